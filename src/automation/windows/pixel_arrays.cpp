#include "automation/windows/pixel_arrays.hpp"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

#include <orlix/com_ptr.hpp>

#include "automation/windows/script_arrays.hpp"
#include "automation/windows/script_values.hpp"
#include "platform/memory_probe.hpp"

namespace orlix::automation {
namespace {

// A band in memory, whose samples lie side by side in a row.
struct BandMemory {
    uint8_t* first = nullptr;  // of row 0
    const VPAEntry* table = nullptr;
    size_t width = 0, height = 0;
    VARTYPE type = VT_EMPTY;
    size_t sampleSize = 0;

    uint8_t* row(size_t y) const { return first + table[y].YEntry * static_cast<ptrdiff_t>(sampleSize); }
};

// S_FALSE for an image without pixels.
HRESULT FindBand(IImageVPA* image, LONG band, BandMemory& memory) {
    LONG bands = 0, width = 0, height = 0, type = 0;
    void* base = nullptr;
    VPAEntry* table = nullptr;
    HRESULT result = image->Dimensions(&bands, &width, &height);
    if (FAILED(result)) return result;
    memory.type = VT_UI1;
    if (width < 1 || height < 1) return S_FALSE;
    result = image->DataType(0, &type);
    if (FAILED(result)) return result;
    switch (type) {
        case DT_BYTE:
            memory.type = VT_UI1;
            memory.sampleSize = 1;
            break;
        case DT_WORD:
            memory.type = VT_UI2;
            memory.sampleSize = 2;
            break;
        case DT_DWORD:
            memory.type = VT_UI4;
            memory.sampleSize = 4;
            break;
        case DT_Float:
            memory.type = VT_R4;
            memory.sampleSize = 4;
            break;
        default:
            return E_FAIL;
    }
    result = image->VPA(band, &base, &table);
    if (FAILED(result)) return result;
    if (!base || !table) return S_FALSE;
    // Entries of the table count samples.
    memory.first = static_cast<uint8_t*>(base) + table[0].XEntry * static_cast<ptrdiff_t>(memory.sampleSize);
    memory.table = table;
    memory.width = static_cast<size_t>(width);
    memory.height = static_cast<size_t>(height);
    return S_OK;
}

bool MayAccess(const BandMemory& memory, bool (*mayAccess)(const void*, size_t)) {
    // Rows follow one another upwards or downwards.
    const uint8_t* const first = memory.row(0);
    const uint8_t* const last = memory.row(memory.height - 1);
    const uint8_t* const low = first < last ? first : last;
    const uint8_t* const high = first < last ? last : first;
    return mayAccess(low, static_cast<size_t>(high - low) + memory.width * memory.sampleSize);
}

void RequireShape(const GivenArray& array, size_t width, size_t height) {
    if (array.dimensions() != 2 || array.size(0) != width || array.size(1) != height)
        throw BadValue{DISP_E_TYPEMISMATCH};
}

template <class Pixel>
Pixel AsPixel(double number) {
    if constexpr (std::is_floating_point_v<Pixel>) {
        if (std::isfinite(number) && std::fabs(number) > std::numeric_limits<Pixel>::max())
            throw BadValue{DISP_E_OVERFLOW};
        return static_cast<Pixel>(number);
    } else {
        const double whole = std::nearbyint(number);
        if (!(whole >= 0 && whole <= std::numeric_limits<Pixel>::max())) throw BadValue{DISP_E_OVERFLOW};
        return static_cast<Pixel>(whole);
    }
}

template <class Pixel>
std::vector<uint8_t> ConvertedPixels(const GivenArray& array) {
    std::vector<uint8_t> bytes(array.count() * sizeof(Pixel));
    for (size_t i = 0; i < array.count(); ++i) {
        const auto pixel = AsPixel<Pixel>(array.Real(i));
        std::memcpy(bytes.data() + i * sizeof pixel, &pixel, sizeof pixel);
    }
    return bytes;
}

std::vector<uint8_t> Converted(const GivenArray& array, VARTYPE type) {
    if (type == VT_UI1) return ConvertedPixels<uint8_t>(array);
    if (type == VT_UI2) return ConvertedPixels<uint16_t>(array);
    return type == VT_UI4 ? ConvertedPixels<uint32_t>(array) : ConvertedPixels<float>(array);
}

// Calls `use` with a pixel's address and a value of its type.
template <class Use>
HRESULT AtPixel(IImageVPA* image, LONG x, LONG y, LONG band, bool (*mayAccess)(const void*, size_t), const Use& use) {
    BandMemory memory;
    const HRESULT found = FindBand(image, band, memory);
    if (FAILED(found)) return found;
    if (found != S_OK || x < 0 || y < 0 || static_cast<size_t>(x) >= memory.width ||
        static_cast<size_t>(y) >= memory.height)
        return DISP_E_BADINDEX;
    uint8_t* const at = memory.row(static_cast<size_t>(y)) + static_cast<size_t>(x) * memory.sampleSize;
    if (!mayAccess(at, memory.sampleSize)) return E_FAIL;
    if (memory.type == VT_UI1) {
        use(at, uint8_t{});
    } else if (memory.type == VT_UI2) {
        use(at, uint16_t{});
    } else if (memory.type == VT_UI4) {
        use(at, uint32_t{});
    } else {
        use(at, float{});
    }
    return S_OK;
}

void TellPicture(IImageVPA* image) {
    if (const auto display = ComPtr<IImageVPA>(image).As<IDisplayProcess>()) display->put_DisplayDirty(1);
}

bool IsInside(IBitmap* bitmap, LONG x, LONG y) {
    LONG width = 0, height = 0;
    return SUCCEEDED(bitmap->get_Width(&width)) && SUCCEEDED(bitmap->get_Height(&height)) && x >= 0 && x < width &&
           y >= 0 && y < height;
}

uint8_t BitOf(LONG x) { return static_cast<uint8_t>(0x80 >> x % 8); }

}  // namespace

HRESULT GetImagePixels(IImageVPA* image, LONG band, VARIANT* pixels) {
    BandMemory memory;
    const HRESULT found = FindBand(image, band, memory);
    if (FAILED(found)) return found;
    if (found == S_OK && !MayAccess(memory, &IsReadable)) return E_FAIL;
    NewArray array(memory.type, memory.width, memory.height);
    const size_t bytes = memory.width * memory.sampleSize;
    for (size_t y = 0; y < memory.height; ++y) std::memcpy(array.data<uint8_t>() + y * bytes, memory.row(y), bytes);
    *pixels = array.Detach();
    return found;
}

HRESULT PutImagePixels(IImageVPA* image, LONG band, const GivenValue* pixels) {
    const GivenArray array(*pixels->value, pixels->locale);
    BandMemory memory;
    HRESULT found = FindBand(image, band, memory);
    if (FAILED(found)) return found;
    RequireShape(array, memory.width, memory.height);
    if (found != S_OK) return found;
    std::vector<uint8_t> converted;
    if (array.type() != memory.type) {
        converted = Converted(array, memory.type);  // may call objects of the script
        found = FindBand(image, band, memory);
        if (found != S_OK || converted.size() != memory.width * memory.height * memory.sampleSize) return E_FAIL;
    }
    if (!MayAccess(memory, &IsWritable)) return E_FAIL;
    const auto* source = converted.empty() ? static_cast<const uint8_t*>(array.data()) : converted.data();
    const size_t bytes = memory.width * memory.sampleSize;
    for (size_t y = 0; y < memory.height; ++y) std::memcpy(memory.row(y), source + y * bytes, bytes);
    TellPicture(image);
    return S_OK;
}

HRESULT GetImagePixel(IImageVPA* image, LONG x, LONG y, LONG band, double* value) {
    return AtPixel(image, x, y, band, &IsReadable, [&](const uint8_t* at, auto pixel) {
        std::memcpy(&pixel, at, sizeof pixel);
        *value = pixel;
    });
}

HRESULT PutImagePixel(IImageVPA* image, LONG x, LONG y, LONG band, double value) {
    const HRESULT result = AtPixel(image, x, y, band, &IsWritable, [&](uint8_t* at, auto pixel) {
        pixel = AsPixel<decltype(pixel)>(value);
        std::memcpy(at, &pixel, sizeof pixel);
    });
    if (SUCCEEDED(result)) TellPicture(image);
    return result;
}

HRESULT GetBitmapPixels(IBitmap* bitmap, VARIANT* pixels) {
    LONG width = 0, height = 0;
    HRESULT result = bitmap->get_Width(&width);
    if (SUCCEEDED(result)) result = bitmap->get_Height(&height);
    if (FAILED(result)) return result;
    const bool isEmpty = width < 1 || height < 1;
    const auto columns = static_cast<size_t>(isEmpty ? 0 : width);
    NewArray array(VT_UI1, columns, static_cast<size_t>(isEmpty ? 0 : height));
    for (LONG y = 0; y < height && !isEmpty; ++y) {
        unsigned char* row = nullptr;
        result = bitmap->GetRowPtr(y, &row);
        if (FAILED(result)) return result;
        uint8_t* const target = array.data<uint8_t>() + static_cast<size_t>(y) * columns;
        for (size_t x = 0; x < columns; ++x) target[x] = row[x / 8] >> (7 - x % 8) & 1;
    }
    *pixels = array.Detach();
    return isEmpty ? S_FALSE : S_OK;
}

HRESULT PutBitmapPixels(IBitmapProcess* bitmap, const GivenValue* pixels) {
    const GivenArray array(*pixels->value, pixels->locale);
    LONG width = 0, height = 0;
    HRESULT result = bitmap->get_Width(&width);
    if (SUCCEEDED(result)) result = bitmap->get_Height(&height);
    if (FAILED(result)) return result;
    const auto columns = static_cast<size_t>(width), rows = static_cast<size_t>(height);
    RequireShape(array, columns, rows);
    std::vector<uint8_t> converted;
    if (array.type() != VT_UI1) {
        converted.resize(array.count());
        for (size_t i = 0; i < converted.size(); ++i) converted[i] = array.Real(i) != 0;
    }
    const auto* source = converted.empty() ? static_cast<const uint8_t*>(array.data()) : converted.data();
    for (LONG y = 0; y < height; ++y) {
        unsigned char* row = nullptr;
        // The bitmap may have another size by now, if an element of the array was an object of the script.
        LONG now = 0;
        result = bitmap->get_Width(&now);
        if (SUCCEEDED(result)) result = now == width ? bitmap->GetWriteRowPtr(y, &row) : E_FAIL;
        if (FAILED(result)) return result;
        const uint8_t* const from = source + static_cast<size_t>(y) * columns;
        for (size_t x = 0; x < columns; ++x) {
            const auto bit = static_cast<uint8_t>(0x80 >> x % 8);
            row[x / 8] = static_cast<uint8_t>(from[x] ? row[x / 8] | bit : row[x / 8] & ~bit);
        }
    }
    return S_OK;
}

HRESULT GetBitmapPixel(IBitmap* bitmap, LONG x, LONG y, LONG* value) {
    if (!IsInside(bitmap, x, y)) return DISP_E_BADINDEX;
    unsigned char* row = nullptr;
    const HRESULT result = bitmap->GetRowPtr(y, &row);
    if (SUCCEEDED(result)) *value = row[x / 8] & BitOf(x) ? 1 : 0;
    return result;
}

HRESULT PutBitmapPixel(IBitmapProcess* bitmap, LONG x, LONG y, LONG value) {
    if (!IsInside(bitmap, x, y)) return DISP_E_BADINDEX;
    unsigned char* row = nullptr;
    const HRESULT result = bitmap->GetWriteRowPtr(y, &row);
    if (SUCCEEDED(result)) row[x / 8] = static_cast<uint8_t>(value ? row[x / 8] | BitOf(x) : row[x / 8] & ~BitOf(x));
    return result;
}

}  // namespace orlix::automation
