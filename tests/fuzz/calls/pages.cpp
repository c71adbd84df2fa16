#include "fuzz/calls/pages.hpp"

#include <cstdint>
#include <iterator>

#include "support/pages.hpp"

namespace orlix::fuzz {

void* HostileAddress(unsigned which) {
    // Readable and writable, neither, readable, neither.
    static Pages pages(4);
    [[maybe_unused]] static const bool done =
        pages.Protect(1, Access::None) && pages.Protect(2, Access::Read) && pages.Protect(3, Access::None);
    constexpr size_t kPage = Pages::kSize;
    void* const addresses[] = {nullptr,
                               reinterpret_cast<void*>(uintptr_t{8}),
                               reinterpret_cast<void*>(UINTPTR_MAX - 15),
                               pages.at(kPage),
                               pages.at(2 * kPage),
                               pages.at(kPage - 16),
                               pages.at(kPage - 3),
                               pages.at(0)};
    return addresses[which % std::size(addresses)];
}

}  // namespace orlix::fuzz
