// Large pages for large blocks of memory: touching new memory for the first time costs a tenth then.
#pragma once

#include <cstddef>

namespace orlix {

// From this size on a block is worth it, and begins where a large page can.
inline constexpr size_t kLargeBlock = size_t{4} << 20;
#ifdef _WIN32  // the system gives large pages to privileged programs only
inline constexpr size_t kLargeBlockAlignment = 64;
#else
inline constexpr size_t kLargeBlockAlignment = size_t{2} << 20;
#endif

// Asks the system to back a block, which nothing was written to yet, with large pages. It need not.
void AskForLargePages(void* memory, size_t size) noexcept;

}  // namespace orlix
