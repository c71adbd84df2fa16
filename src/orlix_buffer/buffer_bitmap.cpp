#include "orlix_buffer/buffer_bitmap.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "component/strings.hpp"
#include "files/bmp.hpp"
#include "image/byte_order.hpp"
#include "image/image_store.hpp"
#include "image/source_image.hpp"
#include "orlix_buffer/clipboard.hpp"
#include "orlix_buffer/device_bitmaps.hpp"
#include "orlix_image/orlix_image.hpp"
#include "platform/file_io.hpp"

namespace orlix {

namespace {

MethodFailure FailureOf(DibFault fault) {
    switch (fault) {
        case DibFault::Depth:
            return MethodFailure("unknown number of bits per pixel.");
        case DibFault::Compression:
            return MethodFailure("unknown compression.");
        case DibFault::Masks:
            return MethodFailure("invalid colour masks.");
        case DibFault::TooShort:
            return MethodFailure("fewer bytes than the pixels need.");
        case DibFault::Runs:
            return MethodFailure("the run lengths leave the image.");
        case DibFault::Palette:
            return MethodFailure("a pixel is outside the palette.");
        case DibFault::Header:
            break;
    }
    return MethodFailure("problems reading the header.");
}

// Names the faults of a bitmap.
template <class Body>
auto Named(const Body& body) try {
    return body();
} catch (const DibFailure& failure) {
    throw FailureOf(failure.fault());
}

void RequireSize(const DibLayout& layout) {
    if (!DibMemory::HoldsPixels(layout)) throw MethodFailure("the bitmap is too large.");
}

// The packed bitmap behind `before` bytes, which stay 0.
std::vector<uint8_t> Packed(const DibMemory& dib, DibHeaderKind kind, size_t before) {
    const std::vector<uint8_t> header = dib.PackedHeader(kind);
    const DibLayout& layout = dib.layout();
    std::vector<uint8_t> bytes(before + header.size() +
                               static_cast<size_t>(layout.stride) * static_cast<size_t>(layout.height));
    std::copy(header.begin(), header.end(), bytes.begin() + static_cast<ptrdiff_t>(before));
    dib.CopyPixels(bytes.data() + before + header.size());
    return bytes;
}

FileContent Load(WideStringView path, size_t most) {
    FileContent content;
    switch (ReadWholeFile(path, content, most)) {
        case ReadStatus::Done:
            break;
        case ReadStatus::CannotOpen:
            throw MethodFailure("failed to open file.");
        case ReadStatus::CannotRead:
            throw MethodFailure("failed to read file.");
    }
    if (!LooksLikeBmp(content.bytes())) throw MethodFailure("not a BMP file.");
    return content;
}

}  // namespace

template <class Read>
void BufferBitmap::Copy(const Read& read) {
    core().Take(Named([&] {
        const DibView view = read();
        RequireSize(view.layout);
        return DibMemory::CopyOf(view);
    }));
}

void BufferBitmap::CopyPacked(std::span<const uint8_t> bytes) {
    Copy([&] { return ReadPackedDib(bytes); });
}

STDMETHODIMP BufferBitmap::Create(LONG width, LONG height, LONG bitsPerPixel) noexcept {
    return Guarded<IDIBImage>([&] {
        constexpr LONG kDepths[] = {1, 4, 8, 16, 24, 32};
        if (width <= 0) throw Failure("IDIBImage::Create: Width must be positive.");
        if (height == 0) throw Failure("IDIBImage::Create: Height must not be 0.");
        if (std::find(std::begin(kDepths), std::end(kDepths), bitsPerPixel) == std::end(kDepths))
            throw Failure("IDIBImage::Create: the bitmap must have 1, 4, 8, 16, 24 or 32 bits per pixel.");
        if (height == std::numeric_limits<LONG>::min()) throw MethodFailure("the bitmap is too large.");
        const auto bits = static_cast<uint32_t>(bitsPerPixel);
        const DibLayout layout = PlainDibLayout(width, height < 0 ? -height : height, height < 0, bits);
        RequireSize(layout);
        core().Take(DibMemory(layout, GreyDibEntries(bits)));
    });
}

STDMETHODIMP BufferBitmap::Attach(void* header, void* bits) noexcept {
    return Guarded<IDIBImage>([&] {
        Require(header);
        constexpr uint32_t kLongestHeader = 1 << 16;
        constexpr size_t kMasksBehind = 16;
        const auto require = [&](const void* memory, uint64_t size, const char* text) {
            if (!core().IsUsable(memory, size)) throw Failure(text);
        };
        constexpr const char* kBadHeader = "IDIBImage::Attach: the system does not allow to read and write the header.";
        constexpr const char* kBadPixels = "IDIBImage::Attach: the system does not allow to read and write the pixels.";
        auto* const bytes = static_cast<uint8_t*>(header);
        require(bytes, 4, kBadHeader);
        size_t there = LittleEndian32(bytes);
        if (there < 4 || there > kLongestHeader) throw FailureOf(DibFault::Header);
        require(bytes, there, kBadHeader);
        if (core().IsUsable(bytes, there + kMasksBehind)) there += kMasksBehind;
        const DibLayout layout = Named([&] {
            const std::span<const uint8_t> span(bytes, there);
            return ReadDibLayout(ReadDibFields(span), span);
        });
        if (layout.compressed()) throw Failure("IDIBImage::Attach: compressed bitmaps cannot be attached.");
        RequireSize(layout);
        const uint64_t packedHeader = DibMemory::HeaderBytes(layout);
        require(bytes, bits ? layout.paletteStart + DibMemory::Entries(layout) * layout.entryBytes : packedHeader,
                kBadHeader);
        auto* const pixels = bits ? static_cast<uint8_t*>(bits) : bytes + static_cast<size_t>(packedHeader);
        require(pixels, layout.PixelBytes(), kBadPixels);
        core().Take(DibMemory(layout, bytes, pixels));
    });
}

STDMETHODIMP BufferBitmap::CreateFromImage(IImageVPA* image) noexcept {
    return Guarded<IDIBImage>([&] {
        Require(image);
        const SourceImage source(image);
        const int32_t bands = source.bands();
        if (source.type() != DT_BYTE || (bands != 1 && bands != 3))
            throw Failure("IDIBImage::CreateFromImage: the image must have 8 bits and one band or three.");
        DibLayout layout = PlainDibLayout(source.width(), source.height(), false, bands == 1 ? 8 : 24);
        RequireSize(layout);
        const ImageProperties kept = source.Kept();
        layout.micronsX = kept.micronsX;
        layout.micronsY = kept.micronsY;
        DibMemory dib(layout, GreyDibEntries(layout.bits));
        // From here on no client is called.
        const auto views = source.views<uint8_t>({0, bands - 1});
        for (int32_t y = 0; y < layout.height; ++y)
            for (int32_t band = 0; band < bands; ++band) {
                uint8_t* out = dib.row(y) + (bands - 1 - band);  // blue first
                for (int32_t x = 0; x < layout.width; ++x, out += bands)
                    *out = views[static_cast<size_t>(band)].at(x, y);
            }
        core().Take(std::move(dib));
    });
}

STDMETHODIMP BufferBitmap::CreateImage(IImageVPAEx** image) noexcept {
    return Guarded<IDIBImage>([&] {
        Require(image);
        *image = nullptr;
        const std::shared_ptr<DibPicture> bitmap = core().Bitmap();
        const DibView dib = bitmap->dib().View();
        const DibLayout& layout = dib.layout;
        const int32_t bands = Named([&] { return DibBands(dib); });
        const ComPtr<OrlixImage> made = OrlixImage::Make();
        PassOn(made->Create(layout.width, layout.height, bands, DT_BYTE, FALSE));
        std::array<void*, 3> bases{};
        VPAEntry* table = nullptr;
        for (int32_t band = 0; band < bands; ++band) PassOn(made->VPA(band, &bases[static_cast<size_t>(band)], &table));
        Named([&] {
            ReadDibSamples(dib, bands, [&](int32_t band, int32_t y) {
                return static_cast<uint8_t*>(bases[static_cast<size_t>(band)]) + table[y].YEntry;
            });
        });
        PassOn(made->PutMicronsPerPixel(layout.micronsX, layout.micronsY));
        made->AddRef();
        *image = made.get();
    });
}

STDMETHODIMP BufferBitmap::GetFormat(LONG* width, LONG* height, LONG* bitsPerPixel) noexcept {
    return Guarded([&] {
        Require(width), Require(height), Require(bitsPerPixel);
        const DibLayout layout = core().bitmap() ? core().bitmap()->dib().layout() : DibLayout();
        *width = layout.width;
        *height = layout.topDown ? -layout.height : layout.height;
        *bitsPerPixel = static_cast<LONG>(layout.bits);
    });
}

STDMETHODIMP BufferBitmap::get_Header(void** header) noexcept {
    return Guarded([&] {
        Require(header);
        *header = core().bitmap() ? core().bitmap()->dib().header() : nullptr;
    });
}

STDMETHODIMP BufferBitmap::GetBits(void** bits, LONG* rowStride) noexcept {
    return Guarded([&] {
        Require(bits), Require(rowStride);
        *bits = core().bitmap() ? core().bitmap()->dib().pixels() : nullptr;
        *rowStride = core().bitmap() ? static_cast<LONG>(core().bitmap()->dib().layout().stride) : 0;
    });
}

STDMETHODIMP BufferBitmap::get_NumberOfColors(LONG* number) noexcept {
    return Guarded([&] {
        Require(number);
        *number = core().bitmap() ? static_cast<LONG>(core().bitmap()->dib().entries()) : 0;
    });
}

uint8_t* BufferBitmap::Entry(LONG entry) {
    const DibMemory& dib = core().Bitmap()->dib();
    if (entry < 0 || static_cast<size_t>(entry) >= dib.entries())
        throw Failure("IDIBImage: color table entry is out of range.");
    return dib.entry(static_cast<size_t>(entry));
}

STDMETHODIMP BufferBitmap::get_ColorTable(LONG entry, OLE_COLOR* color) noexcept {
    return Guarded<IDIBImage>([&] {
        Require(color);
        const uint8_t* const blue = Entry(entry);
        *color = static_cast<OLE_COLOR>(blue[0] << 16 | blue[1] << 8 | blue[2]);
    });
}

STDMETHODIMP BufferBitmap::put_ColorTable(LONG entry, OLE_COLOR color) noexcept {
    return Guarded<IDIBImage>([&] {
        uint8_t* const blue = Entry(entry);
        blue[0] = static_cast<uint8_t>(color >> 16);
        blue[1] = static_cast<uint8_t>(color >> 8);
        blue[2] = static_cast<uint8_t>(color);
    });
}

STDMETHODIMP BufferBitmap::GetMicronsPerPixel(double* x, double* y) noexcept {
    return Guarded<IDIBImage>([&] {
        Require(x), Require(y);
        const DibLayout& layout = core().Bitmap()->dib().layout();
        *x = layout.micronsX;
        *y = layout.micronsY;
        return layout.micronsX > 0 ? S_OK : S_FALSE;
    });
}

STDMETHODIMP BufferBitmap::PutMicronsPerPixel(double x, double y) noexcept {
    return Guarded<IDIBImage>([&] {
        DibMemory& dib = core().Bitmap()->dib();
        const bool unknown = x == 0 && y == 0;
        if (!unknown && !IsPixelSize(x, y))
            throw Failure("IDIBImage::PutMicronsPerPixel: the pixel size must be positive.");
        dib.PutMicrons(unknown ? 0 : x, unknown ? 0 : y);
    });
}

STDMETHODIMP BufferBitmap::GetPacked(LONG headerSize, LONG size, BYTE* bytes, LONG* needed) noexcept {
    return Guarded<IDIBImage>([&]() -> HRESULT {
        Require(needed);
        if (size > 0) Require(bytes);
        *needed = 0;
        const std::shared_ptr<DibPicture> bitmap = core().Bitmap();
        const DibMemory& dib = bitmap->dib();
        if (headerSize != static_cast<LONG>(DibHeaderKind::Info) && headerSize != static_cast<LONG>(DibHeaderKind::V5))
            throw Failure("IDIBImage::GetPacked: the header must have 40 or 124 bytes.");
        if (size < 0) throw MethodFailure("Size must not be negative.");
        const std::vector<uint8_t> header = dib.PackedHeader(static_cast<DibHeaderKind>(headerSize));
        const uint64_t all = header.size() + dib.layout().stride * static_cast<uint64_t>(dib.layout().height);
        if (all > static_cast<uint64_t>(std::numeric_limits<LONG>::max()))
            throw MethodFailure("the bitmap is too large.");
        *needed = static_cast<LONG>(all);
        if (size < *needed) return S_FALSE;
        dib.CopyPixels(bytes + header.size());
        std::copy(header.begin(), header.end(), bytes);
        return S_OK;
    });
}

STDMETHODIMP BufferBitmap::PutPacked(LONG size, BYTE* bytes) noexcept {
    return Guarded<IDIBImage>([&] {
        if (size > 0) Require(bytes);
        if (size < 0) throw MethodFailure("Size must not be negative.");
        CopyPacked({bytes, static_cast<size_t>(size)});
    });
}

STDMETHODIMP BufferBitmap::LoadFromFile(BSTR fileName) noexcept {
    return Guarded<IDIBImage>([&] {
        // A look at the start saves reading a huge file that is no bitmap.
        Load(ToView(fileName), kBmpFileHeader);
        const FileContent content = Load(ToView(fileName), std::numeric_limits<size_t>::max());
        Copy([&] { return ReadBmpView(content.bytes()); });
    });
}

STDMETHODIMP BufferBitmap::SaveToFile(BSTR fileName) noexcept {
    return Guarded<IDIBImage>([&] {
        const std::shared_ptr<DibPicture> bitmap = core().Bitmap();
        const DibLayout& layout = bitmap->dib().layout();
        std::vector<uint8_t> file = Packed(bitmap->dib(), DibHeaderKind::Info, kBmpFileHeader);
        const uint64_t pixels = layout.stride * static_cast<uint64_t>(layout.height);
        PutBmpFileHeader(file.data(), file.size(), file.size() - pixels);
        if (!WriteWholeFile(ToView(fileName), file)) throw MethodFailure("failed to write file.");
    });
}

STDMETHODIMP BufferBitmap::CreateFromHBITMAP(void* bitmap) noexcept {
    return Guarded<IDIBImage>([&] {
        const auto packed = PackedSystemBitmap(bitmap);
        if (!packed) throw Failure("IDIBImage::CreateFromHBITMAP: invalid HBITMAP");
        CopyPacked(*packed);
    });
}

STDMETHODIMP BufferBitmap::CreateFromClipboard() noexcept {
    return Guarded<IDIBImage>([&]() -> HRESULT {
        const auto packed = FromClipboard(ClipboardFormat::Bitmap);
        if (!packed) return S_FALSE;
        CopyPacked(*packed);
        return S_OK;
    });
}

STDMETHODIMP BufferBitmap::CopyToClipboard() noexcept {
    return Guarded<IDIBImage>([&] {
        const std::vector<uint8_t> packed = Packed(core().Bitmap()->dib(), DibHeaderKind::Info, 0);
        const ClipboardItem items[] = {{ClipboardFormat::Bitmap, packed}};
        ToClipboard(items);
    });
}

}  // namespace orlix
