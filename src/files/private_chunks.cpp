#include "files/private_chunks.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "image/byte_order.hpp"

namespace orlix {
namespace {

constexpr std::array<uint8_t, 6> kBeginning = {'O', 'r', 'l', 'i', 'x', 1};
constexpr size_t kPaletteSize = std::tuple_size_v<decltype(ImageSettings::palette)>;

// ------------------------------------------------------------------------------------------------------------- writing

class ChunkWriter {
public:
    explicit ChunkWriter(uint32_t type) : chunk_{type, {kBeginning.begin(), kBeginning.end()}} {}

    void Byte(uint8_t value) { chunk_.data.push_back(value); }
    void Number(uint32_t value) {
        uint8_t bytes[4];
        PutBigEndian32(bytes, value);
        Bytes(bytes);
    }
    void Number(int32_t value) { Number(static_cast<uint32_t>(value)); }
    void Number(double value) {
        const auto bits = std::bit_cast<uint64_t>(value);
        Number(static_cast<uint32_t>(bits >> 32));
        Number(static_cast<uint32_t>(bits));
    }
    void Bytes(std::span<const uint8_t> bytes) { chunk_.data.insert(chunk_.data.end(), bytes.begin(), bytes.end()); }
    void Text(WideStringView text) {
        for (const OLECHAR unit : text) {
            Byte(static_cast<uint8_t>(unit >> 8));
            Byte(static_cast<uint8_t>(unit));
        }
    }
    // The keyword of an entry; the rest of the chunk is its content.
    void Keyword(WideStringView keyword) {
        Number(static_cast<uint32_t>(keyword.size()));
        Text(keyword);
    }

    PrivateChunk Take() { return std::move(chunk_); }

private:
    PrivateChunk chunk_;
};

bool IsGreyRamp(const std::array<uint8_t, kPaletteSize>& palette) {
    for (size_t i = 0; i < kPaletteSize; ++i)
        if (palette[i] != (i % 4 == 3 ? 0 : i / 4)) return false;
    return true;
}

PrivateChunk Settings(const ImageSettings& settings) {
    ChunkWriter chunk(kSettingsChunk);
    chunk.Number(settings.luminanceLower);
    chunk.Number(settings.luminanceUpper);
    chunk.Number(settings.bandToProcess);
    chunk.Number(settings.numberOfBins);
    chunk.Number(settings.displayLower);
    chunk.Number(settings.displayUpper);
    chunk.Number(settings.bandToDisplay);
    chunk.Bytes(settings.displaySetting);
    if (!IsGreyRamp(settings.palette)) chunk.Bytes(settings.palette);
    return chunk.Take();
}

PrivateChunk Calibration(const ImageProperties& kept, const TCoordinateMap& map) {
    ChunkWriter chunk(kCalibrationChunk);
    for (const double value : {kept.micronsX, kept.micronsY, map.OrgX, map.OrgY, map.Matrix.A11, map.Matrix.A12,
                               map.Matrix.A21, map.Matrix.A22})
        chunk.Number(value);
    chunk.Byte(static_cast<uint8_t>(kept.significantBits));
    return chunk.Take();
}

bool SameBits(const TCoordinateMap& left, const TCoordinateMap& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

// ------------------------------------------------------------------------------------------------------------- reading

// Reads a chunk from its beginning. What is missing reads as 0, and makes the chunk unsound.
class ChunkReader {
public:
    explicit ChunkReader(std::span<const uint8_t> data) : rest_(data.subspan(kBeginning.size())) {}

    uint32_t Number() {
        const auto bytes = Bytes(4);
        return bytes.empty() ? 0 : BigEndian32(bytes.data());
    }
    int32_t Signed() { return static_cast<int32_t>(Number()); }
    double Double() {
        const uint64_t high = Number();
        return std::bit_cast<double>(high << 32 | Number());
    }
    std::span<const uint8_t> Bytes(size_t size) {
        if (size > rest_.size()) {
            sound_ = false;
            rest_ = {};
            return {};
        }
        const auto bytes = rest_.first(size);
        rest_ = rest_.subspan(size);
        return bytes;
    }
    WideString Keyword() {
        const uint64_t units = Number();
        if (2 * units > rest_.size()) sound_ = false;
        return sound_ ? Text(Bytes(static_cast<size_t>(2 * units))) : WideString();
    }
    static WideString Text(std::span<const uint8_t> bytes) {
        WideString text(bytes.size() / 2, OLECHAR{0});
        for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<OLECHAR>(BigEndian16(&bytes[2 * i]));
        return text;
    }
    std::span<const uint8_t> Rest() const { return rest_; }
    bool Sound() const { return sound_; }

private:
    std::span<const uint8_t> rest_;
    bool sound_ = true;
};

std::optional<ImageSettings> ReadSettings(ChunkReader chunk) {
    ImageSettings settings;
    settings.luminanceLower = chunk.Double();
    settings.luminanceUpper = chunk.Double();
    settings.bandToProcess = chunk.Signed();
    settings.numberOfBins = chunk.Signed();
    settings.displayLower = chunk.Double();
    settings.displayUpper = chunk.Double();
    settings.bandToDisplay = chunk.Signed();
    const auto setting = chunk.Bytes(settings.displaySetting.size());
    if (!chunk.Sound() || (!chunk.Rest().empty() && chunk.Rest().size() != kPaletteSize)) return std::nullopt;
    std::ranges::copy(setting, settings.displaySetting.begin());
    std::ranges::copy(chunk.Rest(), settings.palette.begin());
    if (chunk.Rest().empty())
        for (size_t i = 0; i < kPaletteSize; ++i) settings.palette[i] = static_cast<uint8_t>(i % 4 == 3 ? 0 : i / 4);
    return settings;
}

void ReadCalibration(ChunkReader chunk, const char* from, FileProperties& properties) {
    const double x = chunk.Double(), y = chunk.Double();
    TCoordinateMap map;
    for (double* value : {&map.OrgX, &map.OrgY, &map.Matrix.A11, &map.Matrix.A12, &map.Matrix.A21, &map.Matrix.A22})
        *value = chunk.Double();
    const auto bits = chunk.Bytes(1);
    if (!chunk.Sound() || !chunk.Rest().empty()) return;
    if (IsPixelSize(x, y)) properties.kept.PutMicrons(x, y, from);
    properties.coordinates = map;
    if (CanBeSignificant(bits[0], properties.dataType)) properties.kept.significantBits = bits[0];
}

// Whether the type has this value, as every value has that comes from an image.
bool IsSample(LONG type, double value) {
    if (type == DT_Float) {
        constexpr double kLargest = std::numeric_limits<float>::max();
        return !std::isfinite(value) || (std::abs(value) <= kLargest && static_cast<float>(value) == value);
    }
    return value >= 0 && value < std::exp2(type) && value == std::floor(value);
}

bool Fit(const ImageSettings& settings, LONG type, int32_t bands) {
    const auto isBand = [&](int32_t band) { return band == BI_AllBands || (band >= 0 && band < bands); };
    for (const double value :
         {settings.luminanceLower, settings.luminanceUpper, settings.displayLower, settings.displayUpper})
        if (!IsSample(type, value)) return false;
    return isBand(settings.bandToProcess) && isBand(settings.bandToDisplay) &&
           (type == DT_BYTE ? settings.numberOfBins == 256 : settings.numberOfBins > 1);
}

}  // namespace

std::vector<PrivateChunk> PrivateChunks(const FileProperties& properties) {
    const ImageProperties& kept = properties.kept;
    std::vector<PrivateChunk> chunks;
    const TCoordinateMap map = properties.coordinates.value_or(kIdentityMap);
    if (kept.micronsX > 0 || kept.significantBits > 0 || !SameBits(map, kIdentityMap))
        chunks.push_back(Calibration(kept, map));
    if (properties.settings) chunks.push_back(Settings(*properties.settings));
    for (const BinaryEntry& entry : kept.binaries) {
        ChunkWriter chunk(kBinaryEntryChunk);
        chunk.Keyword(entry.keyword);
        chunk.Bytes(entry.bytes);
        chunks.push_back(chunk.Take());
    }
    return chunks;
}

PrivateChunk TextEntryChunk(const TextEntry& entry) {
    ChunkWriter chunk(kTextEntryChunk);
    chunk.Keyword(entry.keyword);
    chunk.Text(entry.text);
    return chunk.Take();
}

bool TakePrivateChunk(uint32_t type, std::span<const uint8_t> data, const char* from, FileProperties& properties) {
    if (type != kCalibrationChunk && type != kSettingsChunk && type != kBinaryEntryChunk && type != kTextEntryChunk)
        return false;
    if (data.size() < kBeginning.size() || !std::equal(kBeginning.begin(), kBeginning.end(), data.begin()))
        return false;
    ChunkReader chunk(data);
    if (type == kCalibrationChunk) {
        ReadCalibration(chunk, from, properties);
    } else if (type == kSettingsChunk) {
        properties.settings = ReadSettings(chunk);
    } else {
        WideString keyword = chunk.Keyword();
        const auto rest = chunk.Rest();
        if (!chunk.Sound()) return true;
        if (type == kBinaryEntryChunk)
            properties.kept.binaries.push_back({std::move(keyword), {rest.begin(), rest.end()}});
        else if (rest.size() % 2 == 0)
            properties.kept.Keep({std::move(keyword), ChunkReader::Text(rest)});
    }
    return true;
}

void DropUnfitSettings(FileProperties& properties) {
    if (properties.settings && !Fit(*properties.settings, properties.dataType, properties.bands))
        properties.settings.reset();
}

std::vector<uint8_t> FramedChunks(const FileProperties& properties) {
    std::vector<PrivateChunk> chunks = PrivateChunks(properties);
    for (const TextEntry& entry : properties.kept.AllTexts()) chunks.push_back(TextEntryChunk(entry));
    std::vector<uint8_t> bytes;
    for (const PrivateChunk& chunk : chunks) {
        const size_t start = bytes.size();
        bytes.resize(start + 8);
        PutBigEndian32(&bytes[start], static_cast<uint32_t>(chunk.data.size()));
        PutBigEndian32(&bytes[start + 4], chunk.type);
        bytes.insert(bytes.end(), chunk.data.begin(), chunk.data.end());
    }
    return bytes;
}

void TakeFramedChunks(std::span<const uint8_t> bytes, const char* from, FileProperties& properties) {
    while (bytes.size() >= 8) {
        const size_t size = BigEndian32(bytes.data());
        if (size > bytes.size() - 8) return;
        TakePrivateChunk(BigEndian32(bytes.data() + 4), bytes.subspan(8, size), from, properties);
        bytes = bytes.subspan(8 + size);
    }
}

}  // namespace orlix
