#include "files/checksums.hpp"

#include <algorithm>

#include "files/corpus.hpp"

namespace orlix::test {
namespace {

template <size_t N>
void CheckVariants(const Variant<ChecksumFn> (&table)[N], uint32_t start, uint32_t ofDigits) {
    const std::string digits = "123456789";
    Bytes bytes(200'000);
    for (const bool noisy : {true, false}) {
        Noise noise(5);
        std::ranges::generate(bytes, [&] { return noisy ? static_cast<uint8_t>(noise()) : uint8_t{255}; });
        for (const auto& variant : SupportedOnThisCpu(table)) {
            SCOPED_TRACE(variant.name);
            EXPECT_EQ(ofDigits, variant.fn(start, reinterpret_cast<const uint8_t*>(digits.data()), digits.size()));
            for (size_t size = 0; size < bytes.size(); size += size < 300 ? 1 : size / 3) {
                const size_t from = size % 17, end = from + size;
                const uint32_t first = table[N - 1].fn(start, bytes.data(), from);
                ASSERT_EQ(table[N - 1].fn(start, bytes.data(), end), variant.fn(first, bytes.data() + from, size))
                    << size;
            }
        }
    }
}

TEST(Checksums, VariantsContinueAnyChecksumByAnyNumberOfBytes) {
    CheckVariants(kCrc32, 0, 0xCBF43926);
    CheckVariants(kAdler32, 1, 0x091E01DE);
}

}  // namespace
}  // namespace orlix::test
