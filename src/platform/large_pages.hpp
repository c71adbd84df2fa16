// Large pages for large blocks of memory: touching new memory for the first time costs a tenth then.
#pragma once

#include <cstddef>

namespace orlix {

// From this size on a block is worth it, and begins where a large page can.
inline constexpr size_t kLargeBlock = size_t{4} << 20;
// 64 where the system gives no large pages.
extern const size_t kLargeBlockAlignment;

// Asks the system to back a block, which nothing was written to yet, with large pages. It need not.
void AskForLargePages(void* memory, size_t size) noexcept;

}  // namespace orlix
