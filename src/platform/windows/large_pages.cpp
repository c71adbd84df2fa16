#include "platform/large_pages.hpp"

namespace orlix {

// The system gives large pages to privileged programs only.
constinit const size_t kLargeBlockAlignment = 64;

void AskForLargePages(void*, size_t) noexcept {}

}  // namespace orlix
