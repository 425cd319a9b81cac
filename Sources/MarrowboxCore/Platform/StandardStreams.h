#pragma once

namespace marrowbox {

/// Opens the null device in place of each standard stream without which this process was started. The first
/// files and sockets that it opens would get their numbers otherwise, and whatever writes a warning to the
/// standard error would write it into one of them. To be called before anything else is opened. Programs that
/// are started from now on inherit the streams. Throws std::system_error.
void occupyStandardStreams();

} // namespace marrowbox
