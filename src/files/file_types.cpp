#include "files/file_types.hpp"

namespace orlix {
namespace {

template <class Sample>
Sample BitsOfAll(const FileProperties& properties, PixelSource& source) {
    Sample bits = 0;
    for (int32_t band = 0; band < properties.bands; ++band)
        for (int32_t y = 0; y < properties.height; ++y) {
            const auto* row = static_cast<const Sample*>(source.Row(band, y));
            Sample inRow = 0;
            for (int32_t x = 0; x < properties.width; ++x) inRow = static_cast<Sample>(inRow | row[x]);
            bits = static_cast<Sample>(bits | inRow);
        }
    return bits;
}

}  // namespace

bool IsFileKeyword(WideStringView keyword) noexcept {
    if (keyword.empty() || keyword.size() > 79 || keyword.front() == ' ' || keyword.back() == ' ') return false;
    for (size_t i = 0; i < keyword.size(); ++i) {
        const OLECHAR c = keyword[i];
        if (!(c >= 32 && c < 127) && !(c > 160 && c < 256)) return false;
        if (c == ' ' && keyword[i - 1] == ' ') return false;  // not the first, see above
    }
    return true;
}

int32_t BitsInUse(const FileProperties& properties, PixelSource& source) {
    const int32_t bits = properties.kept.significantBits, all = properties.dataType == DT_WORD ? 16 : 8;
    if (bits <= 0 || bits >= all) return all;
    const uint32_t used = all == 16 ? BitsOfAll<uint16_t>(properties, source) : BitsOfAll<uint8_t>(properties, source);
    return used >> bits ? all : bits;
}

}  // namespace orlix
