#include "geometry/structuring_element.hpp"

#include "component/failure.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

using namespace orlix;

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
    EXPECT_EQ(5u, DiskElements(1).size());
    EXPECT_EQ(9u, DiskElements(1.5).size());
    EXPECT_EQ(13u, DiskElements(2).size());
    for (const double huge : {1e9, 1e308, HUGE_VAL}) EXPECT_THROW(DiskElements(huge), FailedResult);
}

TEST(BytesOf, MasksAsTheContractSays) {
    struct Case {
        LONG x;
        size_t bit;
        LONG byte;
        int mask;
    };
    for (const Case& c : {Case{0, 0, 0, 0x80},
                          {7, 0, 0, 0x01},
                          {8, 0, 1, 0x80},
                          {3, 5, 1, 0x80},
                          {-1, 0, 0, 0},
                          {-1, 1, 0, 0x80},
                          {-7, 0, 0, 0},
                          {-8, 0, -1, 0},
                          {-9, 0, -1, 0x01},
                          {-15, 0, -1, 0x40},
                          {-16, 0, -2, 0},
                          {INT32_MAX, 7, 268435456, 0x02},
                          {INT32_MIN, 0, -268435456, 0}}) {
        SCOPED_TRACE(testing::Message() << c.x << " at " << c.bit);
        const SElement element = {c.x, 5, 9, 9};
        const BinaryElements lists = BytesOf({&element, 1});
        ASSERT_EQ(1u, lists[c.bit].size());
        EXPECT_EQ(c.byte, lists[c.bit][0].m_lX);
        EXPECT_EQ(5, lists[c.bit][0].m_lY);
        EXPECT_EQ(0, lists[c.bit][0].m_lOffset);
        EXPECT_EQ(c.mask, lists[c.bit][0].m_yValue);
    }
}

// Right of column 0 the bits are those of the pixels, each byte once.
TEST(BytesOf, HoldEachPixelOnce) {
    std::mt19937 random(1);
    std::uniform_int_distribution<LONG> column(0, 40), row(-5, 5);
    std::vector<SElement> elements;
    for (int i = 0; i < 120; ++i) elements.push_back({column(random), row(random), 0, 0});
    const BinaryElements lists = BytesOf(elements);
    for (LONG bit = 0; bit < 8; ++bit) {
        std::set<std::pair<LONG, LONG>> pixels, expected, bytes;
        for (const SElement& element : elements) expected.emplace(bit + element.m_lX, element.m_lY);
        for (const SElement& entry : lists[static_cast<size_t>(bit)]) {
            EXPECT_TRUE(bytes.emplace(entry.m_lX, entry.m_lY).second);
            for (LONG k = 0; k < 8; ++k)
                if (entry.m_yValue & 0x80 >> k) pixels.emplace(8 * entry.m_lX + k, entry.m_lY);
        }
        EXPECT_EQ(expected, pixels);
    }
}
