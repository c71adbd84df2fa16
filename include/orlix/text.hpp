// Text: owns a BSTR. Strings are UTF-8 in C++ and UTF-16 (BSTR) in the interfaces.
#ifndef ORLIX_TEXT_HPP
#define ORLIX_TEXT_HPP

#include <orlix/orlix.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace orlix {

// Malformed input becomes U+FFFD.
std::basic_string<OLECHAR> ToUtf16(std::string_view utf8);
std::string ToUtf8(std::basic_string_view<OLECHAR> utf16);

// Owns a BSTR, which may be null. The constructors throw std::bad_alloc.
class Text {
public:
    Text() noexcept = default;
    explicit Text(std::string_view utf8) : Text(std::basic_string_view<OLECHAR>(ToUtf16(utf8))) {}
    explicit Text(std::basic_string_view<OLECHAR> utf16);
    Text(Text&& other) noexcept : bstr_(std::exchange(other.bstr_, nullptr)) {}
    Text& operator=(Text&& other) noexcept {
        std::swap(bstr_, other.bstr_);
        return *this;
    }
    ~Text() { SysFreeString(bstr_); }

    operator BSTR() const noexcept { return bstr_; }
    // For a method to write a string to; frees the string held so far.
    BSTR* Out() noexcept {
        SysFreeString(std::exchange(bstr_, nullptr));
        return &bstr_;
    }
    // Hands the string to the caller, who frees it.
    [[nodiscard]] BSTR Detach() noexcept { return std::exchange(bstr_, nullptr); }
    std::string Utf8() const { return ToUtf8({bstr_ ? bstr_ : OLESTR(""), SysStringLen(bstr_)}); }

private:
    BSTR bstr_ = nullptr;
};

// ------------------------------------------------------------------------------------------------------ implementation

inline std::basic_string<OLECHAR> ToUtf16(std::string_view utf8) {
    std::basic_string<OLECHAR> out;
    out.reserve(utf8.size());
    for (size_t i = 0; i < utf8.size();) {
        const auto at = [&](size_t k) { return k < utf8.size() ? static_cast<unsigned char>(utf8[k]) : 0u; };
        const uint32_t first = at(i);
        const int more = first < 0x80 ? 0 : first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : first >= 0xc2 ? 1 : -1;
        uint32_t c = more > 0 ? first & (0x3fu >> more) : first;
        bool valid = more >= 0 && first < 0xf5;
        for (int k = 1; valid && k <= more; ++k) {
            valid = (at(i + static_cast<size_t>(k)) & 0xc0) == 0x80;
            c = c << 6 | (at(i + static_cast<size_t>(k)) & 0x3f);
        }
        valid =
            valid && c <= 0x10ffff && (c < 0xd800 || c > 0xdfff) && (more < 2 || c >= (more == 2 ? 0x800u : 0x10000u));
        i += valid ? static_cast<size_t>(more) + 1 : 1;
        if (!valid) c = 0xfffd;
        if (c >= 0x10000) {
            out.push_back(static_cast<OLECHAR>(0xd800 + ((c - 0x10000) >> 10)));
            c = 0xdc00 + ((c - 0x10000) & 0x3ff);
        }
        out.push_back(static_cast<OLECHAR>(c));
    }
    return out;
}

inline std::string ToUtf8(std::basic_string_view<OLECHAR> utf16) {
    std::string out;
    out.reserve(utf16.size());
    for (size_t i = 0; i < utf16.size(); ++i) {
        uint32_t c = static_cast<uint16_t>(utf16[i]);
        const uint32_t next = i + 1 < utf16.size() ? static_cast<uint16_t>(utf16[i + 1]) : 0u;
        if (c >= 0xd800 && c < 0xdc00 && next >= 0xdc00 && next < 0xe000) {
            c = 0x10000 + ((c - 0xd800) << 10) + (next - 0xdc00);
            ++i;
        } else if (c >= 0xd800 && c < 0xe000) {
            c = 0xfffd;
        }
        const auto put = [&](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
        if (c < 0x80) {
            put(c);
        } else if (c < 0x800) {
            put(0xc0 | c >> 6);
            put(0x80 | (c & 0x3f));
        } else if (c < 0x10000) {
            put(0xe0 | c >> 12);
            put(0x80 | (c >> 6 & 0x3f));
            put(0x80 | (c & 0x3f));
        } else {
            put(0xf0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3f));
            put(0x80 | (c >> 6 & 0x3f));
            put(0x80 | (c & 0x3f));
        }
    }
    return out;
}

inline Text::Text(std::basic_string_view<OLECHAR> utf16) {
    if (utf16.size() > std::numeric_limits<UINT>::max()) throw std::bad_alloc();
    bstr_ = SysAllocStringLen(utf16.data() ? utf16.data() : OLESTR(""), static_cast<UINT>(utf16.size()));
    if (!bstr_) throw std::bad_alloc();
}

}  // namespace orlix

#endif
