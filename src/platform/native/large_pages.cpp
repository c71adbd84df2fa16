#include "platform/large_pages.hpp"

#include <sys/mman.h>

namespace orlix {

constinit const size_t kLargeBlockAlignment = size_t{2} << 20;

void AskForLargePages(void* memory, size_t size) noexcept {
    (void)madvise(memory, size / kLargeBlockAlignment * kLargeBlockAlignment, MADV_HUGEPAGE);
}

}  // namespace orlix
