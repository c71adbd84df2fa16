#include "frames/camera_frame.hpp"

#include <set>

#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

FrameFormat FormatOf(LONG code) {
    const FrameFormat* const format = FindFrameFormat(code);
    if (!format) throw std::logic_error("no such format");
    return *format;
}

// The image of a frame in exactly the bytes that it needs; padding is checked and left out.
template <class T>
std::vector<T> Converted(const CameraFrame& frame, const std::vector<uint8_t>& bytes) {
    const ImageLayout layout = MakeLayout(frame.width, frame.height, BandsOfImage(frame), TypeOfImage(frame));
    EXPECT_EQ(sizeof(T), static_cast<size_t>(layout.bytesPerSample));
    EXPECT_EQ(FrameBytes(frame), bytes.size());
    Guarded<uint8_t> samples(std::vector<uint8_t>(layout.totalSize, 0xee), 0), exact(bytes, 3);
    ConvertFrame(frame, {exact.data(), bytes.size()}, layout, samples.data());
    EXPECT_TRUE(samples.GuardsIntact());
    std::vector<T> pixels;
    for (size_t row = 0; row < layout.totalSize; row += static_cast<size_t>(layout.rowStride)) {
        const T* const first = reinterpret_cast<const T*>(samples.data() + row);
        pixels.insert(pixels.end(), first, first + frame.width);
        for (const T* pad = first + frame.width; pad < first + layout.rowStride / static_cast<int>(sizeof(T)); ++pad)
            EXPECT_EQ(0, *pad);
    }
    return pixels;
}

// Where bit b of a sample lies, counted from the lowest bit of byte 0.
size_t BitOf(const std::string& layout, size_t bits, size_t sample, size_t b) {
    if (layout == "p") return sample * bits + b;
    if (layout == "") return sample * (bits > 8 ? 16 : 8) + b;
    const size_t group = 24 * (sample / 2), second = sample % 2, low = bits - 8;
    return b < low ? group + 8 + 4 * second + b : group + 16 * second + (b - low);
}

TEST(CameraFrame, EveryFormatIsReadBitByBit) {
    const struct {
        LONG code;
        size_t bits;
        const char* layout;
    } formats[] = {{PF_Mono8, 8, ""},
                   {PF_Mono10, 10, ""},
                   {PF_Mono12, 12, ""},
                   {PF_Mono14, 14, ""},
                   {PF_Mono16, 16, ""},
                   {PF_Mono10p, 10, "p"},
                   {PF_Mono12p, 12, "p"},
                   {PF_Mono10Packed, 10, "Packed"},
                   {PF_Mono12Packed, 12, "Packed"}};
    for (const auto& [code, bits, layout] : formats)
        for (const bool bottomUp : {false, true})
            for (const bool pitched : {false, true})
                for (int32_t width = 1; width <= 70; ++width) {
                    SCOPED_TRACE(testing::Message() << bits << layout << ", " << width << (pitched ? ", pitch" : ""));
                    const int32_t height = 3;
                    CameraFrame frame = {FormatOf(code), width, height, 0, bottomUp, FM_Keep};
                    if (pitched) frame.rowPitch = RowBytes(frame) + static_cast<uint64_t>(width % 3);
                    const auto bytes =
                        Noise<uint8_t>(static_cast<size_t>(FrameBytes(frame)), static_cast<uint32_t>(width));
                    std::vector<uint16_t> want;
                    for (int32_t y = 0; y < height; ++y)
                        for (int32_t x = 0; x < width; ++x) {
                            const auto row = static_cast<size_t>(bottomUp ? height - 1 - y : y);
                            const size_t sample =
                                static_cast<size_t>(x) + (pitched ? 0 : row * static_cast<size_t>(width));
                            unsigned value = 0;
                            for (size_t b = 0; b < bits; ++b) {
                                const size_t bit = BitOf(layout, bits, sample, b) +
                                                   (pitched ? 8 * row * static_cast<size_t>(frame.rowPitch) : 0);
                                value |= (bytes[bit / 8] >> bit % 8 & 1u) << b;
                            }
                            want.push_back(static_cast<uint16_t>(value));
                        }
                    if (bits > 8)
                        ASSERT_EQ(want, Converted<uint16_t>(frame, bytes));
                    else
                        ASSERT_EQ(std::vector<uint8_t>(want.begin(), want.end()), Converted<uint8_t>(frame, bytes));
                }
}

TEST(CameraFrame, PackedBytesByHand) {
    const auto kept = [](LONG code, int32_t width, const std::vector<uint8_t>& bytes) {
        return Converted<uint16_t>({FormatOf(code), width, 1, 0, false, FM_Keep}, bytes);
    };
    using Words = std::vector<uint16_t>;
    EXPECT_EQ(Words({0x3ff, 0, 0x155, 1}), kept(PF_Mono10p, 4, {0xff, 0x03, 0x50, 0x55, 0x00}));
    EXPECT_EQ(Words({0x301, 0x2aa}), kept(PF_Mono10p, 2, {0x01, 0xab, 0x0a}));
    EXPECT_EQ(Words({0xabc, 0x123}), kept(PF_Mono12p, 2, {0xbc, 0x3a, 0x12}));
    EXPECT_EQ(Words({0xabc, 0x123}), kept(PF_Mono12Packed, 2, {0xab, 0x3c, 0x12}));
    EXPECT_EQ(Words({0x3fe, 0x001}), kept(PF_Mono10Packed, 2, {0xff, 0xde, 0x00})) << "unused bits are set";
    EXPECT_EQ(Words({0x0234, 0x0fff}), kept(PF_Mono12, 2, {0x34, 0xf2, 0xff, 0xff}));
}

TEST(CameraFrame, CodesSayHowManyBitsAPixelTakes) {
    constexpr LONG kOthers[] = {0, -1, 0x01080002, 0x01080003};
    for (const LONG code : kOthers) EXPECT_FALSE(FindFrameFormat(code)) << code;
    std::set<LONG> codes;
    for (LONG id = 0; id < 0x200; ++id)
        for (const LONG kind : {0x01080000, 0x010A0000, 0x010C0000, 0x01100000, 0x02180000})
            if (const FrameFormat* const format = FindFrameFormat(kind + id)) {
                codes.insert(kind + id);
                // Eight pixels without padding.
                const CameraFrame frame = {*format, 8, 1, 0, false, FM_Keep};
                EXPECT_EQ(static_cast<uint64_t>(kind >> 16 & 0xff), FrameBytes(frame)) << std::hex << kind + id;
            }
    EXPECT_EQ(44u, codes.size());
}

TEST(CameraFrame, ColoursBecomeBands) {
    const std::vector<uint8_t> bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const auto bands = [&](LONG code, bool bottomUp) {
        return Converted<uint8_t>({FormatOf(code), 2, 2, 0, bottomUp, FM_Keep}, bytes);
    };
    using Bytes = std::vector<uint8_t>;
    EXPECT_EQ(Bytes({1, 4, 7, 10, 2, 5, 8, 11, 3, 6, 9, 12}), bands(PF_RGB8, false));
    EXPECT_EQ(Bytes({9, 12, 3, 6, 8, 11, 2, 5, 7, 10, 1, 4}), bands(PF_BGR8, true));
    EXPECT_EQ(Bytes({3, 4, 1, 2, 7, 8, 5, 6, 11, 12, 9, 10}), bands(PF_RGB8_Planar, true));
    const CameraFrame padded = {FormatOf(PF_RGB8_Planar), 1, 2, 2, false, FM_Keep};
    EXPECT_EQ(Bytes({1, 3, 5, 7, 9, 11}), Converted<uint8_t>(padded, {bytes.begin(), bytes.end() - 1}));
}

// ------------------------------------------------------------------------------------------------------------- mosaics

const struct {
    LONG code;
    const char* filters;  // of the first two rows
} kOrders[] = {{PF_BayerRG8, "RGGB"}, {PF_BayerGB8, "GBRG"}, {PF_BayerGR8, "GRBG"}, {PF_BayerBG8, "BGGR"}};

char FilterAt(const char* filters, int x, int row) { return filters[row % 2 * 2 + x % 2]; }

TEST(Mosaic, EvenColoursAreRecoveredUpToTheBorder) {
    const std::map<char, uint8_t> colour = {{'R', 41}, {'G', 80}, {'B', 163}};
    for (const auto& [code, filters] : kOrders)
        for (const bool bottomUp : {false, true})
            for (const auto& [width, height] : {std::pair(2, 2), {2, 3}, {3, 2}, {4, 4}, {70, 5}, {33, 8}}) {
                SCOPED_TRACE(testing::Message() << filters << " " << width << "x" << height << " " << bottomUp);
                std::vector<uint8_t> bytes;
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) bytes.push_back(colour.at(FilterAt(filters, x, y)));
                CameraFrame frame = {FormatOf(code), width, height, 0, bottomUp, FM_Bands};
                const auto n = static_cast<size_t>(width * height);
                std::vector<uint8_t> want(n, 41);
                want.resize(2 * n, 80);
                want.resize(3 * n, 163);
                EXPECT_EQ(want, Converted<uint8_t>(frame, bytes));
                frame.mosaic = FM_Grey;
                EXPECT_EQ(std::vector<uint8_t>(n, (41 + 2 * 80 + 163) / 4), Converted<uint8_t>(frame, bytes));
                frame.mosaic = FM_Keep;
                EXPECT_EQ(bytes.size(), Converted<uint8_t>(frame, bytes).size());
            }
}

// A grey ramp has no colours: all bands are the ramp, away from the border.
TEST(Mosaic, RampsAreKept) {
    constexpr int kWidth = 40, kHeight = 9;
    std::vector<uint8_t> bytes;
    const auto ramp = [](int x, int y) { return 50 + 20 * x + 11 * y; };
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (const int byte : {ramp(x, y) & 0xff, ramp(x, y) >> 8}) bytes.push_back(static_cast<uint8_t>(byte));
    for (const LONG code : {PF_BayerRG10, PF_BayerGB12, PF_BayerGR16, PF_BayerBG12})
        for (const FrameMosaic mosaic : {FM_Grey, FM_Bands}) {
            const CameraFrame frame = {FormatOf(code), kWidth, kHeight, 0, false, mosaic};
            const auto pixels = Converted<uint16_t>(frame, bytes);
            for (size_t band = 0; band < pixels.size() / (kWidth * kHeight); ++band)
                for (int y = 2; y < kHeight - 2; ++y)
                    for (int x = 2; x < kWidth - 2; ++x)
                        ASSERT_EQ(ramp(x, y), pixels[band * kWidth * kHeight + static_cast<size_t>(y * kWidth + x)]);
        }
}

// What one sample, 16 above a level, contributes to the bands around it.
TEST(Mosaic, OneSampleSpreadsByTheWeightsOfTheFilters) {
    using Table = std::array<int, 25>;
    constexpr Table kOwnFromColour = {0, 0, 0, 0, 0, 0, 4, 8, 4, 0, 0, 8, 16, 8, 0, 0, 4, 8, 4, 0, 0, 0, 0, 0, 0};
    constexpr Table kGreenFromColour = {0, 0, -2, 0, 0, 0, 0, 0, 0, 0, -2, 0, 8, 0, -2, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0};
    constexpr Table kOtherFromColour = {0, 0, -3, 0, 0, 0, 0, 0, 0, 0, -3, 0, 12, 0, -3, 0, 0, 0, 0, 0, 0, 0, -3, 0, 0};
    constexpr Table kAlongFromGreen = {0, 0,  1, 0,  0, 0,  -2, 0, -2, 0, -2, 0, 10,
                                       0, -2, 0, -2, 0, -2, 0,  0, 0,  1, 0,  0};
    constexpr Table kGreenFromGreen = {0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 4, 16, 4, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0};
    constexpr Table kAcrossFromGreen = {0, 0, -2, 0,  0, 0,  -2, 0, -2, 0,  1, 0, 10,
                                        0, 1, 0,  -2, 0, -2, 0,  0, 0,  -2, 0, 0};
    for (const auto& [code, filters] : kOrders)
        for (const auto& [atX, atY] : {std::pair(4, 4), {5, 4}, {4, 5}, {5, 5}}) {
            constexpr size_t kSide = 10;
            std::vector<uint8_t> bytes(kSide * kSide, 100);
            bytes[static_cast<size_t>(atY) * kSide + static_cast<size_t>(atX)] += 16;
            const auto pixels = Converted<uint8_t>({FormatOf(code), kSide, kSide, 0, false, FM_Bands}, bytes);
            const char here = FilterAt(filters, atX, atY), besides = FilterAt(filters, atX + 1, atY);
            const auto table = [&](char band) {
                if (here == 'G')
                    return band == 'G' ? kGreenFromGreen : band == besides ? kAlongFromGreen : kAcrossFromGreen;
                return band == 'G' ? kGreenFromColour : band == here ? kOwnFromColour : kOtherFromColour;
            };
            for (size_t band = 0; band < 3; ++band)
                for (int y = -2; y <= 2; ++y)
                    for (int x = -2; x <= 2; ++x)
                        EXPECT_EQ(100 + table("RGB"[band])[static_cast<size_t>(5 * (y + 2) + x + 2)],
                                  pixels[(band * kSide + static_cast<size_t>(atY + y)) * kSide +
                                         static_cast<size_t>(atX + x)])
                            << filters << " at " << atX << ", " << atY << ": "
                            << "RGB"[band] << " " << x << ", " << y;
        }
}

}  // namespace
}  // namespace orlix
