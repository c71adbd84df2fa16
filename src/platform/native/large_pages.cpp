#include "platform/large_pages.hpp"

#include <sys/mman.h>

namespace orlix {

void AskForLargePages(void* memory, size_t size) noexcept {
    (void)madvise(memory, size / kLargeBlockAlignment * kLargeBlockAlignment, MADV_HUGEPAGE);
}

}  // namespace orlix
