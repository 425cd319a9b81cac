#pragma once

#include "Platform/Clock.h"

#include <cstdint>
#include <memory>
#include <string>

namespace marrowbox {

/// How a person's language and time zone write dates and sizes; a value that is cheap to copy. Any thread.
class Formats {
  public:
    /// The user's, as the environment and the machine's time zone say now.
    static Formats current();
    /// For a zone such as "Europe/Berlin" and a locale such as "en_US". Throws std::invalid_argument for a
    /// zone that nobody knows.
    Formats(const std::string& timeZone, const std::string& locale);

    /// Abbreviated date and short time, such as "Nov 21, 2026, 9:41 AM".
    std::string dateAndTime(Date date) const;
    /// Short time, such as "9:41 AM".
    std::string time(Date date) const;
    /// A size as file browsers show it, in powers of 1000: "999 bytes", "1 kB", "1.5 MB", "1.23 GB".
    std::string byteCount(std::int64_t bytes) const;

  private:
    struct Implementation;
    explicit Formats(std::shared_ptr<const Implementation> implementation);
    std::shared_ptr<const Implementation> implementation_;
};

} // namespace marrowbox
