#include "files/windows/gdiplus.hpp"

#include <cstring>
#include <limits>

namespace orlix {
namespace {

constexpr UINT kRead = 1;  // of ImageLockMode

}  // namespace

GdiPlusSession::GdiPlusSession() : library_(MakeGraphicsLibrary()) {
    loaded_ = library_->Load();
    if (!loaded_ || !library_->FindEntryPoints() || !FindFunctions()) return;
    if (library_->Start(token_) != 0) token_ = 0;
}

GdiPlusSession::~GdiPlusSession() {
    if (token_ != 0) library_->ShutDown(token_);
    if (loaded_) library_->Unload();
}

bool GdiPlusSession::FindFunctions() {
    const HMODULE module = GetModuleHandleW(L"GdiPlus.dll");
    const auto find = [&](const char* name, auto& function) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
            reinterpret_cast<void*>(GetProcAddress(module, name)));
        return function != nullptr;
    };
    return module && find("GdipLoadImageFromStream", LoadImageFromStream) && find("GdipDisposeImage", DisposeImage) &&
           find("GdipGetImageType", GetImageType) && find("GdipGetImageWidth", GetImageWidth) &&
           find("GdipGetImageHeight", GetImageHeight) && find("GdipBitmapLockBits", BitmapLockBits) &&
           find("GdipBitmapUnlockBits", BitmapUnlockBits) && find("GdipCreateBitmapFromScan0", CreateBitmapFromScan0) &&
           find("GdipGetImageGraphicsContext", GetImageGraphicsContext) && find("GdipGraphicsClear", GraphicsClear) &&
           find("GdipDrawImageRectI", DrawImageRectI) && find("GdipDeleteGraphics", DeleteGraphics) &&
           find("GdipSaveImageToStream", SaveImageToStream);
}

bool GdiPlusImage::Load(std::span<const uint8_t> bytes) {
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream_.Out()))) return false;
    for (auto rest = bytes; !rest.empty();) {
        constexpr size_t kPiece = size_t{1} << 30;
        const auto part = rest.first(rest.size() < kPiece ? rest.size() : kPiece);
        ULONG written = 0;
        if (FAILED(stream_->Write(part.data(), static_cast<ULONG>(part.size()), &written)) || written != part.size())
            return false;
        rest = rest.subspan(part.size());
    }
    if (FAILED(stream_->Seek({}, STREAM_SEEK_SET, nullptr))) return false;
    return session_.LoadImageFromStream(stream_.get(), &image_) == 0 && image_;
}

bool GdiPlusImage::Create(int32_t width, int32_t height, int32_t stride, uint8_t* rows) {
    return session_.CreateBitmapFromScan0(width, height, stride, kBlueGreenRed, rows, &image_) == 0 && image_;
}

int32_t GdiPlusImage::Width() const {
    UINT width = 0;
    if (session_.GetImageWidth(image_, &width) != 0 || width > std::numeric_limits<int32_t>::max()) return 0;
    return static_cast<int32_t>(width);
}

int32_t GdiPlusImage::Height() const {
    UINT height = 0;
    if (session_.GetImageHeight(image_, &height) != 0 || height > std::numeric_limits<int32_t>::max()) return 0;
    return static_cast<int32_t>(height);
}

bool GdiPlusImage::IsBitmap() const {
    INT type = 0;
    return session_.GetImageType(image_, &type) == 0 && type == kBitmapImage;
}

GdiPlusImage::Lock::Lock(const GdiPlusSession& ofSession, GpImage* ofImage, const GdiPlusSession::Rectangle& part)
    : session(ofSession), image(ofImage) {
    if (session.BitmapLockBits(image, &part, kRead, kBlueGreenRed, &bits) != 0) bits.scan0 = nullptr;
}

GdiPlusImage::Lock::~Lock() {
    if (bits.scan0) session.BitmapUnlockBits(image, &bits);
}

}  // namespace orlix
