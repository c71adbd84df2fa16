#include "files/platform_picture.hpp"

#include "component/failure.hpp"
#include "files/windows/gdiplus.hpp"

namespace orlix {
namespace {

[[noreturn]] void CannotLoad() {
    throw Failure("IImageVPAEx::CreateFromFile: the system cannot load the picture.", DISP_E_EXCEPTION);
}

// Draws a metafile on white.
void Draw(const GdiPlusSession& session, GpImage* picture, const GdiPlusImage& on, int32_t width, int32_t height) {
    GpGraphics* graphics = nullptr;
    if (session.GetImageGraphicsContext(on.get(), &graphics) != 0 || !graphics) CannotLoad();
    const bool drawn = session.GraphicsClear(graphics, 0xFFFFFFFF) == 0 &&
                       session.DrawImageRectI(graphics, picture, 0, 0, width, height) == 0;
    session.DeleteGraphics(graphics);
    if (!drawn) CannotLoad();
}

bool IsGrey(const GdiPlusImage& picture, int32_t width) {
    bool grey = true;
    const bool read = picture.ForEachRow([&](int32_t, const uint8_t* row) {
        for (int32_t x = 0; x < width && grey; ++x, row += 3) grey = row[0] == row[1] && row[0] == row[2];
        return grey;
    });
    if (!read) CannotLoad();
    return grey;
}

}  // namespace

FileProperties ReadPlatformPicture(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const GdiPlusSession session;
    GdiPlusImage file(session), drawing(session);
    if (!session || !file.Load(bytes)) CannotLoad();
    FileProperties properties;
    properties.width = file.Width();
    properties.height = file.Height();
    properties.bands = 1;
    if (properties.width <= 0 || properties.height <= 0) CannotLoad();
    // As much as run lengths and deflate can make of a byte.
    constexpr uint64_t kMostPixels = 2730 * 8;
    if (file.IsBitmap() &&
        static_cast<uint64_t>(properties.width) * static_cast<uint64_t>(properties.height) > kMostPixels * bytes.size())
        CannotLoad();
    // The system decodes when the pixels are asked for.
    RequireWithin(options.limit, properties.width, properties.height, 1);
    const GdiPlusImage* picture = &file;
    if (!file.IsBitmap()) {
        if (!drawing.Create(properties.width, properties.height, 0, nullptr)) CannotLoad();
        Draw(session, file.get(), drawing, properties.width, properties.height);
        picture = &drawing;
    }
    if (!IsGrey(*picture, properties.width)) properties.bands = 3;
    RequireWithin(options.limit, properties.width, properties.height, properties.bands);
    sink.Begin(properties);
    const bool read = picture->ForEachRow([&](int32_t y, const uint8_t* row) {
        for (int32_t band = 0; band < properties.bands; ++band) {
            auto* const out = static_cast<uint8_t*>(sink.Row(band, y));
            for (int32_t x = 0; x < properties.width; ++x) out[x] = row[3 * x + 2 - band];
        }
        return true;
    });
    if (!read) CannotLoad();
    return properties;
}

}  // namespace orlix
