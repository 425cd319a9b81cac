#pragma once

namespace marrowbox::test {

/// Whether this is one of the slow builds that look for faults of memory and threads.
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

} // namespace marrowbox::test
