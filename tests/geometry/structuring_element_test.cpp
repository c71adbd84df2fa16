#include "geometry/structuring_element.hpp"

#include "support/failure_of.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

TEST(DiskElements, AreThePixelsWithinTheRadiusInReadingOrder) {
    for (const double radius : {0.5, 1.0, 1.5, 2.0, std::sqrt(13.0), 7.3, std::nextafter(5.0, 0.0), 5.0}) {
        SCOPED_TRACE(radius);
        std::vector<std::pair<LONG, LONG>> expected;
        for (LONG y = -9; y <= 9; ++y)
            for (LONG x = -9; x <= 9; ++x)
                if (std::sqrt(static_cast<double>(x * x + y * y)) <= radius) expected.emplace_back(x, y);
        std::vector<std::pair<LONG, LONG>> got;
        for (const SElement& element : DiskElements(radius)) {
            got.emplace_back(element.m_lX, element.m_lY);
            EXPECT_EQ(0, element.m_lOffset);
            EXPECT_EQ(0, element.m_yValue);
        }
        EXPECT_EQ(expected, got);
    }
    EXPECT_EQ(16763709u, DiskElements(2310).size());
    for (const double huge : {2311.0, 1e308, kInfinity})
        EXPECT_EQ("IStructuringElement::CreateDisk: the disk has more than 16777216 pixels.",
                  FailureOf([&] { DiskElements(huge); }));
}

// The rule as the contract states it, element by element.
std::vector<SElement> PlainList(LONG bit, const std::vector<SElement>& elements) {
    std::vector<SElement> list;
    for (const SElement& element : elements) {
        const int64_t v = int64_t{bit} + element.m_lX, byte = v / 8, r = v % 8;
        const int mask = byte >= 0 ? r >= 0 ? 0x80 >> r : 0 : r < 0 ? 1 << (-1 - r) : 0;
        auto entry = std::find_if(list.begin(), list.end(), [&](const SElement& other) {
            return other.m_lX == byte && other.m_lY == element.m_lY;
        });
        if (entry == list.end()) entry = list.insert(entry, {static_cast<LONG>(byte), element.m_lY, 0, 0});
        entry->m_yValue = static_cast<unsigned char>(entry->m_yValue | mask);
    }
    return list;
}

// In any order of the elements: one entry per byte, at the position of its first element.
TEST(ByteLists, AreInTheOrderOfFirstAppearance) {
    std::mt19937 random(1);
    std::vector<SElement> elements = DiskElements(6.5);
    for (LONG x = -17; x < 18; ++x) elements.push_back({x, x % 3, 9, 9});  // also left of the reference byte
    for (const LONG end : {kLeast, kLeast + 1, kMost - 1, kMost}) elements.push_back({end, -5, 0, 0});
    const std::vector<SElement> disk = elements;
    for (int k = 0; k < 40; ++k) {
        if (k == 1) std::reverse(elements.begin(), elements.end());
        if (k > 1) std::shuffle(elements.begin(), elements.end(), random);
        if (k > 20) elements.insert(elements.end(), disk.begin(), disk.begin() + k);  // some of them twice
        ByteLists lists;
        for (const LONG bit : {0, 7, 3, 0}) {
            const std::vector<SElement>& list = lists.At(bit, elements);
            const std::vector<SElement> expected = PlainList(bit, elements);
            ASSERT_EQ(expected.size(), list.size());
            for (size_t i = 0; i < list.size(); ++i) {
                ASSERT_EQ(expected[i].m_lX, list[i].m_lX);
                ASSERT_EQ(expected[i].m_lY, list[i].m_lY);
                ASSERT_EQ(0, list[i].m_lOffset);
                ASSERT_EQ(expected[i].m_yValue, list[i].m_yValue);
            }
        }
    }
}

}  // namespace
}  // namespace orlix
