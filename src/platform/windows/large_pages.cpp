#include "platform/large_pages.hpp"

namespace orlix {

void AskForLargePages(void*, size_t) noexcept {}

}  // namespace orlix
