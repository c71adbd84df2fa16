// Whole files read and written in memory, by the tests.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "files/hand_made.hpp"
#include "files/memory_image.hpp"

namespace orlix::test {

inline MemoryImage Read(std::span<const uint8_t> file) {
    MemoryImage image;
    EXPECT_EQ("", FailureOfReading(file, image, {}, true));
    return image;
}

// Reading fails with the text; before the sink is begun, unless told otherwise.
inline void ExpectRefused(const std::string& text, std::span<const uint8_t> file, bool begun = false,
                          const SampleLimit& limit = {}) {
    MemoryImage image;
    EXPECT_EQ(text, FailureOfReading(file, image, limit));
    EXPECT_EQ(begun, image.begun);
}

}  // namespace orlix::test
