#include "files/png_text.hpp"

#include <algorithm>

#include "files/inflater.hpp"
#include "files/png_format.hpp"
#include "text/encoding.hpp"

namespace orlix::png {
namespace {

constexpr size_t kLargestText = size_t{1} << 20;

using Bytes = std::span<const uint8_t>;

// Removes the first string and its terminating 0 from `data`; nullopt without such a 0.
std::optional<Bytes> TakeString(Bytes& data) {
    const auto zero = std::find(data.begin(), data.end(), uint8_t{0});
    if (zero == data.end()) return std::nullopt;
    const auto length = static_cast<size_t>(zero - data.begin());
    const Bytes string = data.first(length);
    data = data.subspan(length + 1);
    return string;
}

std::optional<uint8_t> TakeByte(Bytes& data) {
    if (data.empty()) return std::nullopt;
    const uint8_t byte = data.front();
    data = data.subspan(1);
    return byte;
}

bool Decompress(Bytes compressed, size_t& budget, std::vector<uint8_t>& text) {
    const bool whole = InflateWhole(compressed, std::min(kLargestText, budget), text);
    budget -= text.size();
    return whole;
}

// Whether a PNG file may hold the text in Latin-1.
bool IsPlain(WideStringView text) {
    return std::all_of(text.begin(), text.end(),
                       [](OLECHAR c) { return c == '\n' || (c >= 32 && c < 127) || (c >= 160 && c < 256); });
}

}  // namespace

std::optional<TextEntry> ReadText(uint32_t type, Bytes data, size_t& budget) {
    const auto keyword = TakeString(data);
    if (!keyword) return std::nullopt;
    TextEntry entry{FromLatin1(*keyword), {}};
    if (!IsFileKeyword(entry.keyword)) return std::nullopt;

    bool compressed = type == kCompressedText;
    if (type == kInternationalText) {
        const auto flag = TakeByte(data);
        if (!flag || *flag > 1) return std::nullopt;
        compressed = *flag == 1;
    }
    if (type != kText) {
        const auto method = TakeByte(data);  // of compression; without meaning if the text is not compressed
        if (!method || (compressed && *method != 0)) return std::nullopt;
    }
    if (type == kInternationalText && (!TakeString(data) || !TakeString(data)))  // language, translated keyword
        return std::nullopt;

    std::vector<uint8_t> decompressed;
    if (compressed) {
        if (!Decompress(data, budget, decompressed)) return std::nullopt;
        data = decompressed;
    }
    if (data.empty()) return std::nullopt;
    entry.text = type == kInternationalText ? FromUtf8(data) : FromLatin1(data);
    return entry;
}

std::optional<TextChunk> WriteText(const TextEntry& entry) {
    const WideStringView text = entry.text;
    if (text.empty() || text.find(OLECHAR{0}) != text.npos || !IsFileKeyword(entry.keyword)) return std::nullopt;
    const std::string keyword = ToLatin1(entry.keyword) + '\0';
    if (IsPlain(text)) return TextChunk{kText, keyword + ToLatin1(text)};
    const std::string utf8 = ToUtf8Bytes(text);
    if (FromUtf8({reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size()}) != text) return std::nullopt;
    // Not compressed, no language, no translated keyword.
    return TextChunk{kInternationalText, keyword + std::string(4, '\0') + utf8};
}

}  // namespace orlix::png
