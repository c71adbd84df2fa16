// Square roots from tables, for the gradient magnitude of integer images.
#pragma once

#include <cstdint>
#include <type_traits>

namespace orlix {

// Rounded roots of bucket centres. A sum v is looked up by its highest bits that are not all zero:
//   bits 24..31   byBits24[v >> 24]   buckets of 2^24     16-bit images only
//   bits 16..23   byBits16[v >> 16]   buckets of 65536    16-bit images only
//   bits 12..15   byBits8[v >> 8]     buckets of 256; entry 255 is 255, not 256
//   bits  8..11   byBits4[v >> 4]     buckets of 16
//   else          exact[v]
// A root is thus within 3.2 % for sums up to 65535, but the first buckets of the wide tables are coarse: every sum from
// 65536 to 131071 (roots of 256 to 362) gives 314, and sums from 2^24 on (4096 to 5793) give 5017.
struct RootTables {
    uint8_t exact[256];
    uint8_t byBits4[256];
    uint8_t byBits8[256];
    uint16_t byBits16[256];
    uint16_t byBits24[256];
};

consteval RootTables MakeRootTables() {
    RootTables tables = {};
    // Entries grow, so each search continues from the previous one. (2r + 1)^2 <= 4m: r + 1/2 is not above the root of
    // m.
    const auto fill = [](auto& table, uint64_t step, uint64_t middle) {
        constexpr uint64_t most = sizeof(table[0]) == 1 ? 255 : 65535;
        uint64_t root = 0;
        for (uint64_t i = 0; i < 256; ++i) {
            while ((2 * root + 1) * (2 * root + 1) <= 4 * (i * step + middle)) ++root;
            table[i] = static_cast<std::remove_reference_t<decltype(table[i])>>(root < most ? root : most);
        }
    };
    fill(tables.exact, 1, 0);
    fill(tables.byBits4, 16, 8);
    fill(tables.byBits8, 256, 128);
    fill(tables.byBits16, 65536, 32768);
    fill(tables.byBits24, 1 << 24, 1 << 23);
    return tables;
}

inline constexpr RootTables kRoots = MakeRootTables();

}  // namespace orlix
