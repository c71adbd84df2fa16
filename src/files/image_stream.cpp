#include "files/image_stream.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "files/inflater.hpp"

namespace orlix {
namespace {

static_assert(std::endian::native == std::endian::little && std::numeric_limits<double>::is_iec559,
              "numbers are copied as they are in memory");

constexpr uint32_t kOuterMagic = 0x6F6C6571;  // "qelo"
constexpr uint32_t kInnerMagic = 0x61626D69;  // "imba"
constexpr double kOuterVersion = 1.0;
constexpr double kRecordVersion = 1.3;
constexpr double kEntryVersion = 1.0;
constexpr uint32_t kLargestCount = 0x7FFFFFFF;  // clients count in LONG
constexpr uint32_t kLargestSize = 0xFFFFFFFF;
constexpr size_t kFirstStep = size_t{1} << 16;  // bytes allocated before any have arrived

constexpr WideStringView kMicronsKeyword = OLESTR("MicronsPerPixel");
constexpr size_t kMicronsSize = 2 * sizeof(double);
constexpr WideStringView kBitsKeyword = OLESTR("SignificantBits");

[[noreturn]] void Damaged() { throw Failure("IPersistStreamInit::Load: the stream is damaged."); }

void RequireVersion(double version, double wanted) {
    if (version != wanted) throw Failure("IPersistStreamInit::Load: version compatibility problems.");
}

bool IsCreatable(LONG type) { return type == DT_BYTE || type == DT_WORD || type == DT_DWORD || type == DT_Float; }

// Calls function with a value of the pixel type.
template <class Function>
void WithPixelType(LONG type, Function function) {
    switch (type) {
        case DT_BYTE:
            return function(uint8_t{});
        case DT_WORD:
            return function(uint16_t{});
        case DT_DWORD:
            return function(uint32_t{});
        default:
            return function(float{});
    }
}

// ------------------------------------------------------------------------------------------------------------- writing

// Counts the bytes that are put.
class ByteCounter {
public:
    void Put(const void*, size_t size) { size_ += size; }
    uint64_t size() const { return size_; }

private:
    uint64_t size_ = 0;
};

// Collects the bytes that are put.
class ByteAppender {
public:
    explicit ByteAppender(std::vector<uint8_t>& bytes) : bytes_(bytes) {}
    void Put(const void* data, size_t size) {
        const auto* const first = static_cast<const uint8_t*>(data);
        bytes_.insert(bytes_.end(), first, first + size);
    }

private:
    std::vector<uint8_t>& bytes_;
};

template <class Output, class T>
void PutNumber(Output& output, T value) {
    static_assert(sizeof(T) == 4 || sizeof(T) == 8);
    output.Put(&value, sizeof value);
}

template <class Output>
void PutString(Output& output, WideStringView text) {
    PutNumber(output, static_cast<uint32_t>(text.size()));
    output.Put(text.data(), text.size() * sizeof(OLECHAR));
}

template <class Output>
void PutSample(Output& output, LONG type, double value) {
    WithPixelType(type, [&](auto pixel) {
        pixel = static_cast<decltype(pixel)>(value);
        output.Put(&pixel, sizeof pixel);
    });
}

template <class Output>
void PutBinary(Output& output, WideStringView keyword, std::span<const uint8_t> bytes) {
    PutNumber(output, kEntryVersion);
    PutString(output, keyword);
    PutNumber(output, static_cast<uint32_t>(bytes.size()));
    output.Put(bytes.data(), bytes.size());
}

template <class Output>
void PutHead(Output& output, LONG type, const ImageContent& content, uint32_t compressedSize) {
    PutNumber(output, kOuterMagic);
    PutNumber(output, kOuterVersion);
    PutNumber(output, static_cast<int32_t>(type));
    PutNumber(output, kInnerMagic);
    PutNumber(output, kRecordVersion);
    const TCoordinateMap& map = content.coordinates;
    for (const double* value :
         {&map.OrgX, &map.OrgY, &map.Matrix.A11, &map.Matrix.A12, &map.Matrix.A21, &map.Matrix.A22})
        output.Put(value, sizeof *value);
    const ImageLayout& layout = content.layout;
    PutNumber(output, layout.bands);
    PutNumber(output, layout.width);
    PutNumber(output, layout.height);
    PutNumber(output, layout.bytesPerSample);
    PutNumber(output, static_cast<uint32_t>(layout.rowStride));
    PutNumber(output, static_cast<uint32_t>(layout.totalSize));
    PutNumber(output, static_cast<uint32_t>(content.table.size()));
    static_assert(sizeof(VPAEntry) == 8);
    output.Put(content.table.data(), content.table.size() * sizeof(VPAEntry));
    PutNumber(output, compressedSize);
}

template <class Output>
void PutTail(Output& output, LONG type, const ImageProperties& properties, const ImageSettings& settings) {
    PutString(output, properties.description);
    PutSample(output, type, settings.luminanceLower);
    PutSample(output, type, settings.luminanceUpper);
    PutNumber(output, settings.bandToProcess);
    PutNumber(output, settings.numberOfBins);
    PutSample(output, type, settings.displayLower);
    PutSample(output, type, settings.displayUpper);
    PutNumber(output, settings.bandToDisplay);
    output.Put(settings.palette.data(), settings.palette.size());
    output.Put(settings.displaySetting.data(), settings.displaySetting.size());

    PutNumber(output, static_cast<uint32_t>(properties.texts.size()));
    for (const TextEntry& entry : properties.texts) {
        PutNumber(output, kEntryVersion);
        PutString(output, entry.keyword);
        PutString(output, entry.text);
    }
    const bool calibrated = properties.micronsX > 0, bitsKnown = properties.significantBits > 0;
    PutNumber(output, static_cast<uint32_t>(properties.binaries.size() + calibrated + bitsKnown));
    if (calibrated) {
        const double microns[] = {properties.micronsX, properties.micronsY};
        std::array<uint8_t, kMicronsSize> bytes;
        std::memcpy(bytes.data(), microns, sizeof microns);
        PutBinary(output, kMicronsKeyword, bytes);
    }
    if (bitsKnown) {
        std::array<uint8_t, sizeof(int32_t)> bytes;
        std::memcpy(bytes.data(), &properties.significantBits, bytes.size());
        PutBinary(output, kBitsKeyword, bytes);
    }
    for (const BinaryEntry& entry : properties.binaries) PutBinary(output, entry.keyword, entry.bytes);
}

// ceil(1.001 size) + 12
constexpr uint64_t CompressionBuffer(uint64_t size) { return size + (size + 999) / 1000 + 12; }

// Gives the bytes of zlib's compress(), which would not take its memory from operator new. Returns the bytes written.
size_t Deflate(std::span<const uint8_t> bytes, std::span<uint8_t> room) {
    constexpr size_t kLargestStep = size_t{1} << 30;  // zlib counts in unsigned int
    z_stream stream = NewZlibStream();
    if (::deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) throw std::bad_alloc();
    stream.next_in = const_cast<Bytef*>(bytes.data());  // zlib only reads; its interface is older than const
    stream.next_out = room.data();
    int state = Z_OK;
    do {
        const auto taken = static_cast<size_t>(stream.next_in - bytes.data());
        const auto written = static_cast<size_t>(stream.next_out - room.data());
        stream.avail_in = static_cast<uInt>(std::min(bytes.size() - taken, kLargestStep));
        stream.avail_out = static_cast<uInt>(std::min(room.size() - written, kLargestStep));
        state = ::deflate(&stream, taken + stream.avail_in == bytes.size() ? Z_FINISH : Z_NO_FLUSH);
    } while (state == Z_OK);
    const auto size = static_cast<size_t>(stream.next_out - room.data());
    ::deflateEnd(&stream);
    if (state != Z_STREAM_END) throw FailedResult(E_FAIL);
    return size;
}

FileContent Compress(std::span<const uint8_t> bytes) {
    const uint64_t room = CompressionBuffer(bytes.size());
    if (bytes.size() > kLargestSize || room > PTRDIFF_MAX)
        throw Failure("IPersistStreamInit::Save: the image is too large for a stream.");
    FileContent compressed(static_cast<size_t>(room));
    const size_t size = Deflate(bytes, {compressed.data(), static_cast<size_t>(room)});
    if (size > kLargestSize) throw Failure("IPersistStreamInit::Save: the image is too large for a stream.");
    compressed.Shorten(size);
    return compressed;
}

// ------------------------------------------------------------------------------------------------------------- reading

class Reader {
public:
    explicit Reader(ByteSource& source) : source_(source) {}

    // Returns the number of bytes read, which is less than `size` only at the end.
    size_t Some(void* data, size_t size) {
        size_t done = 0;
        while (done < size) {
            const size_t read = source_.Read(static_cast<uint8_t*>(data) + done, size - done);
            if (read == 0) break;
            done += read;
        }
        return done;
    }
    void Bytes(void* data, size_t size) {
        if (Some(data, size) < size) throw Failure("IPersistStreamInit::Load: the stream ends early.");
    }
    template <class T>
    T Number() {
        T value{};
        Bytes(&value, sizeof value);
        return value;
    }
    uint32_t Count() {
        const auto count = Number<uint32_t>();
        if (count > kLargestCount) Damaged();
        return count;
    }
    double Sample(LONG type) {
        double value = 0;
        WithPixelType(type, [&](auto pixel) { value = static_cast<double>(Number<decltype(pixel)>()); });
        return value;
    }
    // A string or a vector of bytes.
    template <class Container>
    Container Elements() {
        return Elements<Container>(Count());
    }
    template <class Container>
    Container Elements(size_t count) {
        constexpr size_t kElement = sizeof(typename Container::value_type);
        Container elements;
        while (elements.size() < count) {
            const size_t done = elements.size();
            const size_t step = std::min(count - done, std::max(done, kFirstStep / kElement));
            elements.resize(done + step);
            Bytes(elements.data() + done, step * kElement);
        }
        return elements;
    }

private:
    ByteSource& source_;
};

// The geometry. Checks all sizes that follow from it.
ImageLayout ReadLayout(Reader& reader, LONG type, const SampleLimit& limit) {
    const auto bands = reader.Number<int32_t>();
    const auto width = reader.Number<int32_t>();
    const auto height = reader.Number<int32_t>();
    const auto bytesPerSample = reader.Number<uint32_t>();
    const auto rowStride = reader.Number<uint32_t>();
    const auto totalSize = reader.Number<uint32_t>();
    const auto entries = reader.Number<uint32_t>();
    if (bands <= 0 || width <= 0 || height <= 0) Damaged();
    // Division avoids overflow: a geometry beyond all memory counts as damage, not as a lack of memory.
    const uint64_t stride = (uint64_t{static_cast<uint32_t>(width)} * bytesPerSample + 3) / 4 * 4;
    if (bytesPerSample != static_cast<uint32_t>(BytesPerSample(type)) || rowStride != stride ||
        totalSize % stride != 0 || totalSize / stride % static_cast<uint32_t>(height) != 0 ||
        totalSize / stride / static_cast<uint32_t>(height) != static_cast<uint32_t>(bands))
        Damaged();
    limit.Require(width, height, bands, "IPersistStreamInit::Load", E_FAIL);
    const ImageLayout layout = MakeLayout(width, height, bands, type);
    if (entries != OffsetTableSize(layout)) Damaged();
    return layout;
}

void RequireTable(Reader& reader, const ImageLayout& layout) {
    std::array<VPAEntry, 1024> piece;
    const int64_t end = OffsetTableSize(layout) - kTableMargin;
    for (int64_t index = -kTableMargin; index < end;) {
        const auto count = static_cast<size_t>(std::min<int64_t>(end - index, piece.size()));
        reader.Bytes(piece.data(), count * sizeof(VPAEntry));
        for (const VPAEntry& entry : std::span(piece).first(count)) {
            const VPAEntry right = OffsetTableEntry(layout, index);
            if ((HasColumnEntry(layout, index) && entry.XEntry != right.XEntry) ||
                (HasRowEntry(layout, index) && entry.YEntry != right.YEntry))
                Damaged();
            ++index;
        }
    }
}

ImageContent ReadPixels(Reader& reader, const ImageLayout& layout, LONG type) {
    const auto compressedSize = reader.Number<uint32_t>();
    if (compressedSize > CompressionBuffer(layout.totalSize) || layout.totalSize > kLargestExpansion * compressedSize)
        Damaged();
    // Pixels are allocated once enough bytes have arrived to hold them all; the other bytes pass through a buffer.
    const size_t first = static_cast<size_t>((layout.totalSize + kLargestExpansion - 1) / kLargestExpansion);
    std::vector<uint8_t> buffer = reader.Elements<std::vector<uint8_t>>(first);
    ImageContent content = MakeContent(type, layout.width, layout.height, layout.bands, Samples::Unset);
    Inflater inflater({});
    size_t done = 0;
    uint32_t left = compressedSize - static_cast<uint32_t>(first);
    for (;;) {
        inflater.Feed(buffer);
        done += inflater.Read({content.data + done, layout.totalSize - done});
        uint8_t excess = 0;
        if (done == layout.totalSize && inflater.Read({&excess, 1}) != 0) Damaged();
        if (left == 0) break;
        buffer.resize(std::min<size_t>(left, kFirstStep));
        reader.Bytes(buffer.data(), buffer.size());
        left -= static_cast<uint32_t>(buffer.size());
    }
    if (done != layout.totalSize || !inflater.AtEnd() || !inflater.InputUsedUp()) Damaged();
    return content;
}

int32_t ReadBand(Reader& reader, int32_t bands) {
    const auto band = reader.Number<int32_t>();
    if (band != BI_AllBands && (band < 0 || band >= bands)) Damaged();
    return band;
}

ImageSettings ReadSettings(Reader& reader, LONG type, int32_t bands) {
    ImageSettings settings;
    settings.luminanceLower = reader.Sample(type);
    settings.luminanceUpper = reader.Sample(type);
    settings.bandToProcess = ReadBand(reader, bands);
    settings.numberOfBins = reader.Number<int32_t>();
    if (type == DT_BYTE ? settings.numberOfBins != 256 : settings.numberOfBins <= 1) Damaged();
    settings.displayLower = reader.Sample(type);
    settings.displayUpper = reader.Sample(type);
    settings.bandToDisplay = ReadBand(reader, bands);
    reader.Bytes(settings.palette.data(), settings.palette.size());
    reader.Bytes(settings.displaySetting.data(), settings.displaySetting.size());
    return settings;
}

// If the entry is the size of a pixel, stores it and returns true.
bool TakeMicrons(const BinaryEntry& entry, ImageProperties& properties) {
    if (entry.keyword != kMicronsKeyword || entry.bytes.size() != kMicronsSize) return false;
    double microns[2];
    std::memcpy(microns, entry.bytes.data(), sizeof microns);
    if (!IsPixelSize(microns[0], microns[1])) return false;
    properties.PutMicrons(microns[0], microns[1], "stream");
    return true;
}

// The same for the number of significant bits.
bool TakeBits(const BinaryEntry& entry, LONG type, ImageProperties& properties) {
    int32_t bits = 0;
    if (entry.keyword != kBitsKeyword || entry.bytes.size() != sizeof bits) return false;
    std::memcpy(&bits, entry.bytes.data(), sizeof bits);
    if (bits == 0 || !CanBeSignificant(bits, type)) return false;
    properties.significantBits = bits;
    return true;
}

void ReadEntries(Reader& reader, LONG type, ImageProperties& properties) {
    for (uint32_t left = reader.Count(); left > 0; --left) {
        RequireVersion(reader.Number<double>(), kEntryVersion);
        TextEntry entry;
        entry.keyword = reader.Elements<WideString>();
        entry.text = reader.Elements<WideString>();
        properties.texts.push_back(std::move(entry));
    }
    const uint32_t binaries = reader.Count();
    for (uint32_t i = 0; i < binaries; ++i) {
        RequireVersion(reader.Number<double>(), kEntryVersion);
        BinaryEntry entry;
        entry.keyword = reader.Elements<WideString>();
        entry.bytes = reader.Elements<std::vector<uint8_t>>();
        const bool taken =
            (i == 0 && TakeMicrons(entry, properties)) ||
            (properties.significantBits == 0 && properties.binaries.empty() && TakeBits(entry, type, properties));
        if (!taken) properties.binaries.push_back(std::move(entry));
    }
}

}  // namespace

StreamBytes WriteImageStream(LONG dataType, const ImageContent& content, const ImageSettings& settings) {
    StreamBytes stream;
    stream.pixels = Compress({content.data, content.layout.totalSize});
    ByteAppender head(stream.head);
    PutHead(head, dataType, content, static_cast<uint32_t>(stream.pixels.bytes().size()));
    ByteAppender tail(stream.tail);
    PutTail(tail, dataType, content.properties, settings);
    return stream;
}

uint64_t LargestImageStream(LONG dataType, const ImageContent& content, const ImageSettings& settings) {
    ByteCounter counter;
    PutHead(counter, dataType, content, 0);
    PutTail(counter, dataType, content.properties, settings);
    return counter.size() + CompressionBuffer(content.layout.totalSize);
}

StreamImage ReadImageStream(ByteSource& source, const SampleLimit& limit) {
    Reader reader(source);
    uint32_t magic = 0;
    if (reader.Some(&magic, sizeof magic) < sizeof magic || magic != kOuterMagic)
        throw Failure("IPersistStreamInit::Load: not an image stream.");
    RequireVersion(reader.Number<double>(), kOuterVersion);
    StreamImage image;
    image.dataType = reader.Number<int32_t>();
    if (!IsCreatable(image.dataType)) throw FailedResult(E_FAIL);

    if (reader.Number<uint32_t>() != kInnerMagic) throw FailedResult(E_FAIL);
    RequireVersion(reader.Number<double>(), kRecordVersion);
    TCoordinateMap map;
    for (double* value : {&map.OrgX, &map.OrgY, &map.Matrix.A11, &map.Matrix.A12, &map.Matrix.A21, &map.Matrix.A22})
        reader.Bytes(value, sizeof *value);
    const ImageLayout layout = ReadLayout(reader, image.dataType, limit);
    RequireTable(reader, layout);
    image.content = ReadPixels(reader, layout, image.dataType);
    image.content.coordinates = map;
    ImageProperties& properties = image.content.properties;
    properties.description = reader.Elements<WideString>();
    properties.hasDescription = !properties.description.empty();
    image.settings = ReadSettings(reader, image.dataType, layout.bands);
    ReadEntries(reader, image.dataType, properties);
    return image;
}

}  // namespace orlix
