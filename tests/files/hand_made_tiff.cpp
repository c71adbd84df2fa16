#include "files/hand_made_tiff.hpp"

#include <algorithm>
#include <cstddef>
#include <map>

namespace orlix::test {
namespace {

// The width of a code changes after 9 bits' worth of entries; a clear code before that keeps it at 9.
Bytes Lzw(const Bytes& data) {
    constexpr uint32_t kClear = 256, kEnd = 257, kLiterals = 200;
    std::vector<uint32_t> codes;
    for (size_t i = 0; i < data.size(); ++i) {
        if (i % kLiterals == 0) codes.push_back(kClear);
        codes.push_back(data[i]);
    }
    codes.push_back(kEnd);
    Bytes out((codes.size() * 9 + 7) / 8);
    for (size_t bit = 0; bit < codes.size() * 9; ++bit)
        if (codes[bit / 9] >> (8 - bit % 9) & 1) out[bit / 8] = static_cast<uint8_t>(out[bit / 8] | 0x80u >> bit % 8);
    return out;
}

// A row: runs of equal bytes, and literals one by one.
Bytes PackBits(const Bytes& data) {
    Bytes out;
    for (size_t i = 0; i < data.size();) {
        size_t run = 1;
        while (run < 128 && i + run < data.size() && data[i + run] == data[i]) ++run;
        out.push_back(static_cast<uint8_t>(run == 1 ? 0 : 257 - run));
        out.push_back(data[i]);
        i += run;
    }
    return out;
}

// PackBits is applied to each row, the others to all of a strip or tile.
Bytes Compressed(const Bytes& data, uint32_t compression) {
    if (compression == kTiffLzw) return Lzw(data);
    return compression == kTiffNone || compression == kTiffPackBits ? data : PackedStream(data);
}

// The samples of a row as numbers, and as bytes: packed from the most significant bit, or whole in the file's order.
Bytes TiffRowBytes(const std::vector<uint32_t>& row, uint32_t bits, const TiffNumbers& numbers) {
    Bytes out;
    if (bits % 8 == 0) {
        for (const uint32_t value : row) out = std::move(out) + numbers(value, static_cast<int>(bits / 8));
        return out;
    }
    out.resize((row.size() * bits + 7) / 8);
    for (size_t bit = 0; bit < row.size() * bits; ++bit)
        if (row[bit / bits] >> (bits - 1 - bit % bits) & 1)
            out[bit / 8] = static_cast<uint8_t>(out[bit / 8] | 0x80u >> bit % 8);
    return out;
}

// Each sample less the one before it in its band; for floating point each byte less the one before it, the most
// significant bytes of the row first.
Bytes PredictedRow(std::vector<uint32_t> row, size_t step, const TiffPage& page, const TiffNumbers& numbers) {
    if (page.predictor == 2)
        for (size_t i = row.size(); i-- > step;) row[i] -= row[i - step];
    if (page.predictor != 3) return TiffRowBytes(row, page.bits, numbers);
    Bytes planes;
    for (uint32_t byte = page.bits / 8; byte-- > 0;)
        for (const uint32_t value : row) planes.push_back(static_cast<uint8_t>(value >> 8 * byte));
    for (size_t i = planes.size(); i-- > step;) planes[i] = static_cast<uint8_t>(planes[i] - planes[i - step]);
    return planes;
}

// The strips or tiles of a page in their order, compressed.
std::vector<Bytes> TiffParts(const TiffPage& page, const TiffNumbers& numbers) {
    const bool tiled = page.tileWidth > 0;
    const uint32_t partWidth = tiled ? page.tileWidth : page.width;
    const uint32_t partHeight = tiled ? page.tileHeight : page.rowsPerStrip ? page.rowsPerStrip : page.height;
    const uint32_t step = page.planar ? 1 : page.samples;
    std::vector<Bytes> parts;
    for (uint32_t plane = 0; plane < (page.planar ? page.samples : 1); ++plane)
        for (uint32_t top = 0; top < page.height; top += partHeight)
            for (uint32_t left = 0; left < page.width; left += partWidth) {
                Bytes data;
                for (uint32_t y = top; y < (tiled ? top + partHeight : std::min(page.height, top + partHeight)); ++y) {
                    std::vector<uint32_t> row;
                    for (uint32_t x = left; x < left + partWidth; ++x)
                        for (uint32_t s = 0; s < step; ++s)
                            row.push_back(x < page.width && y < page.height ? page.value(x, y, plane + s) : 0xAAAAAAAA);
                    const Bytes bytes = PredictedRow(std::move(row), step, page, numbers);
                    data = std::move(data) + (page.compression == kTiffPackBits ? PackBits(bytes) : bytes);
                }
                parts.push_back(Compressed(data, page.compression));
                if (page.reversedBits)
                    for (uint8_t& byte : parts.back()) {
                        uint32_t reversed = 0;
                        for (int bit = 0; bit < 8; ++bit) reversed = reversed << 1 | (byte >> bit & 1);
                        byte = static_cast<uint8_t>(reversed);
                    }
            }
    return parts;
}

}  // namespace

Bytes TiffNumbers::operator()(uint64_t value, int bytes) const {
    Bytes out;
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> 8 * (bigEndian ? bytes - 1 - i : i)));
    return out;
}

Bytes MakeTiff(const TiffFile& file) {
    constexpr uint32_t kShort = 3, kLong = 4;
    const TiffNumbers& n = file.numbers;
    const int wide = file.large ? 8 : 4;
    Bytes out = FromText(n.bigEndian ? "MM" : "II") + n(file.large ? 43 : 42, 2);
    if (file.large) out = out + n(8, 2) + n(0, 2);
    size_t link = out.size();  // where the offset of the next directory stands
    out = out + n(0, wide);
    const auto put = [&](size_t at, uint64_t value) {
        const Bytes bytes = n(value, wide);
        std::copy(bytes.begin(), bytes.end(), out.begin() + static_cast<ptrdiff_t>(at));
    };
    for (const TiffPage& page : file.pages) {
        Bytes offsets, sizes;
        const std::vector<Bytes> parts = TiffParts(page, n);
        for (const Bytes& part : parts) {
            offsets = offsets + n(out.size(), 4);
            sizes = sizes + n(part.size(), 4);
            out = out + part;
        }
        std::map<uint32_t, TiffEntry> entries;
        const auto add = [&](uint32_t tag, uint32_t type, uint32_t count, const Bytes& value) {
            entries[tag] = {tag, type, count, value};
        };
        const auto number = [&](uint32_t tag, uint32_t type, uint32_t value) {
            add(tag, type, 1, n(value, type == kShort ? 2 : 4));
        };
        const auto count = static_cast<uint32_t>(parts.size());
        Bytes depths, formats;
        for (uint32_t i = 0; i < page.samples; ++i) {
            depths = depths + n(page.bits, 2);
            formats = formats + n(page.format, 2);
        }
        number(256, kLong, page.width);
        number(257, kLong, page.height);
        add(258, kShort, page.samples, depths);
        number(259, kShort, page.compression);
        number(262, kShort, page.photometric);
        if (page.reversedBits) number(266, kShort, 2);
        number(277, kShort, page.samples);
        number(284, kShort, page.planar ? 2 : 1);
        if (page.predictor != 1) number(317, kShort, page.predictor);
        if (page.format != 0) add(339, kShort, page.samples, formats);
        if (page.tileWidth > 0) {
            number(322, kLong, page.tileWidth);
            number(323, kLong, page.tileHeight);
        } else {
            number(278, kLong, page.rowsPerStrip ? page.rowsPerStrip : page.height);
        }
        add(page.tileWidth > 0 ? 324 : 273, kLong, count, offsets);
        add(page.tileWidth > 0 ? 325 : 279, kLong, count, sizes);
        for (const TiffEntry& entry : page.more) entries[entry.tag] = entry;
        std::erase_if(entries, [](const auto& entry) { return entry.second.count == 0; });

        // Values that do not fit into their entries stand before the directory.
        Bytes directory = n(entries.size(), file.large ? 8 : 2);
        for (auto& [tag, entry] : entries) {
            directory = directory + n(tag, 2) + n(entry.type, 2) + n(entry.count, wide);
            Bytes value = entry.value;
            if (value.size() > static_cast<size_t>(wide)) {
                value = n(out.size(), wide);
                out = out + entry.value;
            }
            value.resize(static_cast<size_t>(wide));
            directory = directory + value;
        }
        if (out.size() % 2 != 0) out.push_back(0);
        put(link, out.size());
        link = out.size() + directory.size();
        out = out + directory + n(0, wide);
    }
    return out;
}

Bytes MakeTiff(const TiffPage& page) { return MakeTiff(TiffFile{.pages = {page}}); }

Bytes LittleRational(uint32_t numerator, uint32_t denominator) { return Little32(numerator) + Little32(denominator); }

TiffEntry TiffAscii(uint32_t tag, std::string_view text) {
    const Bytes bytes = FromText(text) + Bytes{0};
    return {tag, 2, static_cast<uint32_t>(bytes.size()), bytes};
}

TiffEntry TiffShort(uint32_t tag, uint32_t value) { return {tag, 3, 1, Little16(value)}; }

}  // namespace orlix::test
