// Pictures by the system's graphics library (GDI+), which is found at run time and runs while a session exists.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <orlix/com_ptr.hpp>

#include "platform/graphics_library.hpp"

namespace orlix {

// Objects of the library.
struct GpImage;
struct GpGraphics;

class GdiPlusSession {
public:
    GdiPlusSession();
    ~GdiPlusSession();
    GdiPlusSession(const GdiPlusSession&) = delete;
    GdiPlusSession& operator=(const GdiPlusSession&) = delete;

    // Whether the library is there with all its functions, and runs. Nothing else may be called otherwise.
    explicit operator bool() const { return token_ != 0; }

    // Status 0 is success. The records are the library's own, written out because its headers would bind the module
    // to it.
    struct Bits {
        UINT width, height;
        INT stride;
        INT format;
        void* scan0;
        UINT_PTR reserved;
    };
    struct Rectangle {
        INT x, y, width, height;
    };
    struct EncoderParameters {
        UINT count;
        struct {
            GUID guid;
            ULONG numberOfValues, type;
            void* value;
        } parameter;
    };
    int(WINAPI* LoadImageFromStream)(IStream* stream, GpImage** image) = nullptr;
    int(WINAPI* DisposeImage)(GpImage* image) = nullptr;
    int(WINAPI* GetImageType)(GpImage* image, INT* type) = nullptr;
    int(WINAPI* GetImageWidth)(GpImage* image, UINT* width) = nullptr;
    int(WINAPI* GetImageHeight)(GpImage* image, UINT* height) = nullptr;
    int(WINAPI* BitmapLockBits)(GpImage* bitmap, const Rectangle* part, UINT flags, INT format, Bits* bits) = nullptr;
    int(WINAPI* BitmapUnlockBits)(GpImage* bitmap, Bits* bits) = nullptr;
    int(WINAPI* CreateBitmapFromScan0)(INT width, INT height, INT stride, INT format, BYTE* scan0,
                                       GpImage** bitmap) = nullptr;
    int(WINAPI* GetImageGraphicsContext)(GpImage* image, GpGraphics** graphics) = nullptr;
    int(WINAPI* GraphicsClear)(GpGraphics* graphics, UINT32 argb) = nullptr;
    int(WINAPI* DrawImageRectI)(GpGraphics* graphics, GpImage* image, INT x, INT y, INT width, INT height) = nullptr;
    int(WINAPI* DeleteGraphics)(GpGraphics* graphics) = nullptr;
    int(WINAPI* SaveImageToStream)(GpImage* image, IStream* stream, const CLSID* encoder,
                                   const EncoderParameters* parameters) = nullptr;

private:
    bool FindFunctions();

    std::unique_ptr<GraphicsLibrary> library_;
    bool loaded_ = false;
    uintptr_t token_ = 0;
};

inline constexpr INT kBlueGreenRed = 0x21808;  // pixel format of 24 bits, blue first
inline constexpr INT kBitmapImage = 1;         // an image type; the other one is metafile

// An image of the library; null where it could not be made.
class GdiPlusImage {
public:
    explicit GdiPlusImage(const GdiPlusSession& session) : session_(session) {}
    ~GdiPlusImage() {
        if (image_) session_.DisposeImage(image_);
    }
    GdiPlusImage(const GdiPlusImage&) = delete;
    GdiPlusImage& operator=(const GdiPlusImage&) = delete;

    // A file in memory. The bytes are copied, because the library decodes when it likes.
    bool Load(std::span<const uint8_t> bytes);
    // A bitmap of these colours, or of zeros if there are none; `rows` must outlive it.
    bool Create(int32_t width, int32_t height, int32_t stride, uint8_t* rows);

    int32_t Width() const;  // 0 where it is unknown
    int32_t Height() const;
    bool IsBitmap() const;
    GpImage* get() const { return image_; }

    // Calls use(y, row) for the rows of a bitmap from the top until it returns false; 3 bytes a pixel, blue first. The
    // library gives some rows at a time. Returns false on failure.
    template <class Use>
    bool ForEachRow(const Use& use) const {
        constexpr int32_t kRows = 16;
        const int32_t width = Width(), height = Height();
        for (int32_t top = 0; top < height; top += kRows) {
            const GdiPlusSession::Rectangle part = {0, top, width, top + kRows <= height ? kRows : height - top};
            Lock lock(session_, image_, part);
            if (!lock.bits.scan0) return false;
            for (int32_t row = 0; row < part.height; ++row)
                if (!use(top + row, static_cast<const uint8_t*>(lock.bits.scan0) + ptrdiff_t{lock.bits.stride} * row))
                    return true;
        }
        return true;
    }

private:
    struct Lock {
        Lock(const GdiPlusSession& ofSession, GpImage* ofImage, const GdiPlusSession::Rectangle& part);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        const GdiPlusSession& session;
        GpImage* image;
        GdiPlusSession::Bits bits{};
    };

    const GdiPlusSession& session_;
    ComPtr<IStream> stream_;
    GpImage* image_ = nullptr;
};

}  // namespace orlix
