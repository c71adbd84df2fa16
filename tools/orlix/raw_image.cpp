#include "raw_image.hpp"

#include "console.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <bit>
#include <charconv>
#include <iterator>
#include <limits>
#include <vector>

namespace tool {

using namespace orlix;

namespace {

// Whole numbers up to `most`, without a sign.
bool ParseWhole(std::string_view text, uint64_t most, uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number <= most;
}

// Takes the part up to the separator off the text.
std::string_view TakePart(std::string_view& text, char separator) {
    const size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

}  // namespace

#define CAMERA(format) \
    { #format, 0, PF_##format }
#define MOSAIC(order)                                                                                    \
    CAMERA(order##8), CAMERA(order##10), CAMERA(order##10p), CAMERA(order##10Packed), CAMERA(order##12), \
        CAMERA(order##12p), CAMERA(order##12Packed), CAMERA(order##16)

const RawLayout::Type RawLayout::kTypes[] = {
    {"u8", DT_BYTE, 0},
    {"u16le", DT_WORD, 0},
    {"u16be", DT_WORD, 0, true},
    {"u32le", DT_DWORD, 0},
    {"u32be", DT_DWORD, 0, true},
    {"f32le", DT_Float, 0},
    {"f32be", DT_Float, 0, true},
    CAMERA(Mono8),
    CAMERA(Mono10),
    CAMERA(Mono10p),
    CAMERA(Mono10Packed),
    CAMERA(Mono12),
    CAMERA(Mono12p),
    CAMERA(Mono12Packed),
    CAMERA(Mono14),
    CAMERA(Mono16),
    MOSAIC(BayerRG),
    MOSAIC(BayerGB),
    MOSAIC(BayerGR),
    MOSAIC(BayerBG),
};

#undef MOSAIC
#undef CAMERA

// The third byte of a pixel format is the number of bits that a pixel takes.
uint64_t RawLayout::Type::bits() const {
    return static_cast<uint64_t>(frameFormat != 0 ? frameFormat >> 16 & 0xff : dataType & 0xff);
}

std::string RawLayout::TypeNames() {
    std::string names;
    for (const Type& type : kTypes)
        if (!type.isMosaic()) names += (names.empty() ? "" : ", ") + std::string(type.name);
    return names + ", BayerRG8 and the like";
}

RawLayout::RawLayout(std::string_view text) : text_(text) {
    // With these bounds no product of the following exceeds 2^64.
    constexpr uint64_t kMostPixels = std::numeric_limits<int32_t>::max(), kLongestRow = kMostPixels,
                       kFarthest = uint64_t{1} << 40;
    const UsageError form("--raw is WIDTHxHEIGHT:TYPE[:OFFSET[:ROWBYTES]], such as 640x480:u16le:512, not " + text_);
    uint64_t width = 0, height = 0;
    if (!ParseWhole(TakePart(text, 'x'), kMostPixels, width) || !ParseWhole(TakePart(text, ':'), kMostPixels, height) ||
        width == 0 || height == 0)
        throw form;
    if (width * height > kMostPixels) throw UsageError("--raw " + text_ + ": an image has at most 2147483647 pixels");
    width_ = static_cast<LONG>(width);
    height_ = static_cast<LONG>(height);
    const std::string_view name = TakePart(text, ':');
    type_ = std::ranges::find(kTypes, name, &Type::name);
    if (type_ == std::end(kTypes))
        throw UsageError("--raw knows no type '" + std::string(name) + "'; there are " + TypeNames());
    pixelBytes_ = (width * type_->bits() + 7) / 8;
    frameBytes_ = frameStep_ = (width * height * type_->bits() + 7) / 8;
    if (text.empty() && !text_.ends_with(':')) return;
    if (!ParseWhole(TakePart(text, ':'), kFarthest, offset_)) throw form;
    if (text.empty() && !text_.ends_with(':')) return;
    bottomUp_ = text.starts_with('-');
    if (bottomUp_) text.remove_prefix(1);
    if (!ParseWhole(text, kLongestRow, rowBytes_)) throw form;
    if (rowBytes_ < pixelBytes_)
        throw UsageError("--raw " + text_ + ": a row of pixels has " + std::to_string(pixelBytes_) +
                         " bytes, more than ROWBYTES");
    frameBytes_ = rowBytes_ * (height - 1) + pixelBytes_;
    frameStep_ = rowBytes_ * height;
}

int64_t RawLayout::samples() const { return int64_t{width_} * height_ * (type_->isMosaic() ? 3 : 1); }

uint64_t RawLayout::Frames(uint64_t fileBytes) const {
    return fileBytes < offset_ + frameBytes_ ? 0 : (fileBytes - offset_ - frameBytes_) / frameStep_ + 1;
}

template <class Sample>
void RawLayout::ReadRows(std::istream& file, const ComPtr<IImageVPAExPlus>& image) const {
    Check(image->Create(width_, height_, 1, type_->dataType, 0), image);
    const Rows<Sample> rows(image);
    for (LONG i = 0; i < height_; ++i) {
        const std::span<Sample> row = rows[bottomUp_ ? height_ - 1 - i : i];
        file.read(reinterpret_cast<char*>(row.data()), static_cast<std::streamsize>(pixelBytes_));
        if (!file) throw std::runtime_error("the file cannot be read, or has become shorter");
        if (type_->bigEndian != (std::endian::native == std::endian::big))
            for (Sample& sample : row) {
                auto* const bytes = reinterpret_cast<unsigned char*>(&sample);
                std::reverse(bytes, bytes + sizeof sample);
            }
        if (rowBytes_ != 0) file.seekg(static_cast<std::streamoff>(rowBytes_ - pixelBytes_), std::ios::cur);
    }
}

void RawLayout::ReadFrame(std::istream& file, const ComPtr<IImageVPAExPlus>& image) const {
    std::vector<unsigned char> bytes(static_cast<size_t>(frameBytes_));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw std::runtime_error("the file cannot be read, or has become shorter");
    SFrame frame = {};
    frame.m_pBuffer = bytes.data();
    frame.m_llSize = static_cast<LONGLONG>(bytes.size());
    frame.m_lWidth = width_;
    frame.m_lHeight = height_;
    frame.m_lPixelFormat = type_->frameFormat;
    frame.m_lRowPitch = static_cast<LONG>(rowBytes_);
    frame.m_lBottomUp = bottomUp_;
    frame.m_lMosaic = FM_Bands;
    const auto frames = Cast<IImageFrames>(image);
    Check(frames->CreateFromFrame(&frame), frames);
}

void RawLayout::Read(std::istream& file, LONG frame, const ComPtr<IImageVPAExPlus>& image) const {
    const uint64_t size = SizeOf(file), frames = Frames(size);
    if (frames == 0)
        throw std::runtime_error("the file has " + std::to_string(size) + " bytes, but --raw " + text_ + " needs " +
                                 std::to_string(offset_ + frameBytes_));
    if (static_cast<uint64_t>(frame) >= frames)
        throw std::runtime_error("the file holds " + std::to_string(frames) + (frames == 1 ? " image" : " images") +
                                 " of --raw " + text_ + ", so there is no page " + std::to_string(frame));
    file.seekg(static_cast<std::streamoff>(offset_ + frameStep_ * static_cast<uint64_t>(frame)));
    if (type_->frameFormat != 0)
        ReadFrame(file, image);
    else if (type_->dataType == DT_BYTE)
        ReadRows<uint8_t>(file, image);
    else if (type_->dataType == DT_WORD)
        ReadRows<uint16_t>(file, image);
    else
        ReadRows<uint32_t>(file, image);  // the bits of floats
}

uint64_t SizeOf(std::istream& file) {
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    return end > 0 ? static_cast<uint64_t>(end) : 0;
}

}  // namespace tool
