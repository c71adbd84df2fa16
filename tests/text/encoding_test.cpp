#include "text/encoding.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlix::testing {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(TextEncoding, CharactersOfEveryLengthGoBothWays) {
    const std::string bytes = "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    const WideString text = {'A',    0x7F,   0x80,   0x7FF,  0x800,
                             0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF};  // the ends of each range
    EXPECT_TRUE(FromUtf8(Bytes(bytes.begin(), bytes.end())) == text);
    EXPECT_EQ(bytes, ToUtf8Bytes(text));
    EXPECT_TRUE(FromLatin1(Bytes{'a', 0xFF}) == OLESTR("a\u00FF"));
    EXPECT_EQ("a\xFF", ToLatin1(OLESTR("a\u00FF")));
}

TEST(TextEncoding, EveryByteThatStartsNoCharacterBecomesAReplacement) {
    struct Case {
        const char* name;
        Bytes bytes;
        size_t replacements;
    };
    for (const Case& c :
         {Case{"a continuation alone", {0x80}, 1}, Case{"overlong of two", {0xC0, 0x80}, 2},
          Case{"overlong of two, highest", {0xC1, 0xBF}, 2}, Case{"overlong of three", {0xE0, 0x9F, 0xBF}, 3},
          Case{"overlong of four", {0xF0, 0x8F, 0xBF, 0xBF}, 4}, Case{"first surrogate", {0xED, 0xA0, 0x80}, 3},
          Case{"last surrogate", {0xED, 0xBF, 0xBF}, 3}, Case{"above U+10FFFF", {0xF4, 0x90, 0x80, 0x80}, 4},
          Case{"five bytes", {0xF8, 0x88, 0x80, 0x80, 0x80}, 5}, Case{"cut off", {0xE2, 0x82}, 2},
          Case{"interrupted", {0xE2, 'x'}, 1}, Case{"never used", {0xFE, 0xFF}, 2}}) {
        Bytes bytes = c.bytes;
        bytes.push_back('z');
        const WideString text = FromUtf8(bytes);
        WideString expected(c.replacements, OLECHAR{0xFFFD});
        if (std::string_view(c.name) == "interrupted") expected.push_back('x');
        EXPECT_TRUE(text == expected + WideString(OLESTR("z"))) << c.name;
    }
    for (const WideString& half :
         {WideString{0xD800}, WideString{0xDC00}, WideString{0xDC00, 0xD800}, WideString{0xD800, 0xD800}})
        EXPECT_EQ(half.size() == 1 ? "\xEF\xBF\xBD" : "\xEF\xBF\xBD\xEF\xBF\xBD", ToUtf8Bytes(half));
}

}  // namespace
}  // namespace orlix::testing
