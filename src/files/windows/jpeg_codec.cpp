#include "files/jpeg_codec.hpp"

#include <limits>
#include <new>

#include "files/windows/gdiplus.hpp"

namespace orlix {
namespace {

constexpr CLSID kJpegEncoder = {0x557CF401, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
constexpr GUID kQuality = {0x1D5BE4B5, 0xFA4A, 0x452D, {0x9C, 0xDD, 0x5D, 0xB3, 0x51, 0x05, 0xE7, 0xEB}};
constexpr ULONG kLongValue = 4;

// All bytes of a stream in memory.
std::vector<uint8_t> BytesOf(IStream& stream) {
    STATSTG statistics = {};
    if (FAILED(stream.Stat(&statistics, STATFLAG_NONAME)) || FAILED(stream.Seek({}, STREAM_SEEK_SET, nullptr)))
        return {};
    if (statistics.cbSize.QuadPart > std::numeric_limits<int32_t>::max()) return {};
    std::vector<uint8_t> bytes(static_cast<size_t>(statistics.cbSize.QuadPart));
    ULONG read = 0;
    if (FAILED(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read)) || read != bytes.size()) return {};
    return bytes;
}

}  // namespace

bool DecodeJpeg(std::span<const uint8_t> bytes, const JpegSize& size, const std::function<bool(const uint8_t*)>& use) {
    const GdiPlusSession session;
    if (!session) return false;
    GdiPlusImage image(session);
    if (!image.Load(bytes) || !image.IsBitmap() || image.Width() != size.width || image.Height() != size.height)
        return false;
    std::vector<uint8_t> row(static_cast<size_t>(size.width) * static_cast<size_t>(size.bands));
    return image.ForEachRow([&](int32_t, const uint8_t* in) {
        uint8_t* out = row.data();
        for (int32_t x = 0; x < size.width; ++x, in += 3)
            for (int32_t band = 0; band < size.bands; ++band) *out++ = in[2 - band];
        return use(row.data());
    });
}

std::vector<uint8_t> EncodeJpeg(const JpegSize& size, int32_t quality,
                                const std::function<void(int32_t, uint8_t*)>& fill) {
    const GdiPlusSession session;
    if (!session) return {};
    // Up to 65535 x 65535 pixels.
    const uint64_t stride = (static_cast<uint64_t>(size.width) * 3 + 3) / 4 * 4;
    if (stride * static_cast<uint64_t>(size.height) > std::numeric_limits<size_t>::max() / 2) throw std::bad_alloc();
    std::vector<uint8_t> rows(static_cast<size_t>(stride) * static_cast<size_t>(size.height));
    std::vector<uint8_t> row(static_cast<size_t>(size.width) * static_cast<size_t>(size.bands));
    for (int32_t y = 0; y < size.height; ++y) {
        fill(y, row.data());
        const uint8_t* in = row.data();
        uint8_t* out = rows.data() + static_cast<size_t>(stride) * static_cast<size_t>(y);
        for (int32_t x = 0; x < size.width; ++x, in += size.bands, out += 3)
            for (int32_t colour = 0; colour < 3; ++colour) out[2 - colour] = in[size.bands == 3 ? colour : 0];
    }
    GdiPlusImage image(session);
    ComPtr<IStream> stream;
    if (!image.Create(size.width, size.height, static_cast<int32_t>(stride), rows.data()) ||
        FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out())))
        return {};
    LONG value = quality;
    const GdiPlusSession::EncoderParameters parameters = {1, {kQuality, 1, kLongValue, &value}};
    if (session.SaveImageToStream(image.get(), stream.get(), &kJpegEncoder, &parameters) != 0) return {};
    return BytesOf(*stream);
}

}  // namespace orlix
