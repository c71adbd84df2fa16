#include "platform/memory_probe.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "support/pages.hpp"

#ifndef _WIN32
#include <unistd.h>

#include <cstdio>
#endif

namespace orlix {
namespace {

TEST(MemoryProbe, EveryPageOfTheRangeCounts) {
    Pages pages(3);
    constexpr size_t kSize = Pages::kSize;
    EXPECT_TRUE(IsReadable(pages.at(0), 3 * kSize));
    EXPECT_TRUE(IsWritable(pages.at(0), 3 * kSize));

    ASSERT_TRUE(pages.Protect(1, Access::Read));
    EXPECT_TRUE(IsReadable(pages.at(0), 3 * kSize));
    EXPECT_FALSE(IsWritable(pages.at(0), 3 * kSize));
    EXPECT_TRUE(IsWritable(pages.at(0), kSize));
    EXPECT_FALSE(IsWritable(pages.at(0), kSize + 1));
    EXPECT_FALSE(IsWritable(pages.at(2 * kSize - 1), 2));
    EXPECT_TRUE(IsWritable(pages.at(2 * kSize), kSize));

    ASSERT_TRUE(pages.Protect(1, Access::None));
    EXPECT_FALSE(IsReadable(pages.at(0), 3 * kSize));
    EXPECT_TRUE(IsReadable(pages.at(0), kSize));
    EXPECT_FALSE(IsReadable(pages.at(kSize), 1));
    EXPECT_FALSE(IsWritable(pages.at(2 * kSize - 1), 1));
}

TEST(MemoryProbe, PagesKeepTheirContent) {
    Pages pages(3);
    *pages.at(5) = 77;
    EXPECT_TRUE(IsWritable(pages.at(0), 3 * Pages::kSize));
    EXPECT_EQ(77, *pages.at(5));
    EXPECT_EQ(0, *pages.at(Pages::kSize));
}

TEST(MemoryProbe, AddressesOutsideTheProcessAreRefused) {
    const auto address = [](uintptr_t value) { return reinterpret_cast<const void*>(value); };
    const uintptr_t top = std::numeric_limits<uintptr_t>::max();
    EXPECT_FALSE(IsReadable(nullptr, 1));
    EXPECT_FALSE(IsReadable(address(16), 1));
    EXPECT_FALSE(IsReadable(address(top), 1));
    EXPECT_FALSE(IsReadable(address(top), 2));  // wraps
    const int local = 1;
    EXPECT_TRUE(IsReadable(&local, sizeof local));
    EXPECT_FALSE(IsReadable(&local, std::numeric_limits<size_t>::max()));
    EXPECT_FALSE(IsReadable(&local, std::numeric_limits<size_t>::max() / 2));
    EXPECT_TRUE(IsReadable(nullptr, 0));
}

#ifndef _WIN32
TEST(MemoryProbe, AMappedFileThatWasCutShortIsRefusedBeyondItsEnd) {
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(nullptr, file);
    const int descriptor = fileno(file);
    ASSERT_EQ(0, ftruncate(descriptor, 2 * 4096));
    auto* const memory =
        static_cast<uint8_t*>(mmap(nullptr, 2 * 4096, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0));
    ASSERT_NE(MAP_FAILED, static_cast<void*>(memory));
    EXPECT_TRUE(IsWritable(memory, 2 * 4096));
    ASSERT_EQ(0, ftruncate(descriptor, 4096));
    EXPECT_TRUE(IsWritable(memory, 4096));
    EXPECT_FALSE(IsReadable(memory, 4097));  // a load would raise SIGBUS
    EXPECT_FALSE(IsWritable(memory, 2 * 4096));
    munmap(memory, 2 * 4096);
    std::fclose(file);
}
#endif

}  // namespace
}  // namespace orlix
