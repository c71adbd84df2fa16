#include "orlix_vb_helper/copied_image.hpp"

#include <limits>

#include <orlix/client.hpp>

#include "component/failure.hpp"
#include "component/stream_bytes.hpp"
#include "orlix_buffer/orlix_buffer.hpp"
#include "orlix_image/orlix_image.hpp"

namespace orlix {
namespace {

// A new object of the library, by one of its interfaces.
template <class I, class Class>
ComPtr<I> NewObject() {
    return ComPtr<I>(Class::Make().get());
}

std::vector<uint8_t> PngOf(const ComPtr<IImageFile>& file) {
    const ComPtr<IStream> stream = CreateMemoryStream();
    Check(file->SaveToStream(stream.get(), IFF_PNG), file);
    SeekStart(stream);
    return ReadRest(stream.get());
}

// The picture of an image that no bitmap holds as it is.
ComPtr<IDIBImage> Shown(const ComPtr<IImageVPAExPlus>& image, LONG width, LONG height) {
    const auto display = Cast<IDisplayProcess>(image);
    Check(display->SnapDisplayRange(0, 0, 0), display);
    const auto bitmap = NewObject<IDIBImage, OrlixBuffer>();
    Check(bitmap->Create(width, height, 32), bitmap);
    void* bits = nullptr;
    LONG stride = 0;
    Check(bitmap->GetBits(&bits, &stride), bitmap);
    const auto pixels = static_cast<unsigned int*>(bits);
    const size_t above = static_cast<size_t>(height - 1) * static_cast<size_t>(width);  // the last row is the top one
    SPictureMemory memory = {pixels + above, width, height, -width, RS_Nearest};
    const auto picture = Cast<IPictureMemory>(image);
    Check(picture->RenderBltToMemory(&memory, 0, 0, width, height, 0, 0), picture);
    return bitmap;
}

std::vector<uint8_t> Packed(const ComPtr<IDIBImage>& bitmap) {
    constexpr LONG kInfoHeader = 40;
    LONG size = 0;
    Check(bitmap->GetPacked(kInfoHeader, 0, nullptr, &size), bitmap);
    std::vector<uint8_t> packed(static_cast<size_t>(size));
    Check(bitmap->GetPacked(kInfoHeader, size, packed.data(), &size), bitmap);
    return packed;
}

}  // namespace

CopiedImage CopyOfImage(IImageVPA* client) {
    LONG bands = 0, width = 0, height = 0, type = 0;
    if (FAILED(client->Dimensions(&bands, &width, &height)) || width <= 0 || height <= 0)
        throw MethodFailure("no image.");
    const auto image = NewObject<IImageVPAExPlus, OrlixImage>();
    Check(image->CreateFromImage(client, BI_AllBands), image);
    Check(image->Dimensions(&bands, &width, &height), image);
    Check(image->DataType(0, &type), image);

    CopiedImage copy;
    const bool isPicture = bands == 1 || bands == 3;
    if (isPicture && (type == DT_BYTE || type == DT_WORD)) {
        ComPtr<IImageFile> file;  // the client's has the texts too
        if (FAILED(client->QueryInterface(__uuidof(IImageFile), file.OutVoid())) || !file)
            file = Cast<IImageFile>(image);
        copy.png = PngOf(file);
    }
    if (isPicture && type == DT_BYTE) {
        const auto bitmap = NewObject<IDIBImage, OrlixBuffer>();
        Check(bitmap->CreateFromImage(image.get()), bitmap);
        copy.bitmap = Packed(bitmap);
    } else {
        copy.bitmap = Packed(Shown(image, width, height));
    }
    return copy;
}

ComPtr<IImageVPA> ImageOfPng(std::span<const uint8_t> file) {
    const ComPtr<IStream> stream = CreateMemoryStream();
    WriteTo(stream.get(), file);
    SeekStart(stream);
    const auto image = NewObject<IImageFile, OrlixImage>();
    Check(image->LoadFromStream(stream.get(), 0), image);
    return Cast<IImageVPA>(image);
}

ComPtr<IImageVPA> ImageOfBitmap(std::span<const uint8_t> packed) {
    if (packed.size() > std::numeric_limits<int32_t>::max()) throw FailedResult(E_FAIL);
    const auto bitmap = NewObject<IDIBImage, OrlixBuffer>();
    Check(bitmap->PutPacked(static_cast<LONG>(packed.size()), const_cast<BYTE*>(packed.data())), bitmap);
    ComPtr<IImageVPAEx> image;
    Check(bitmap->CreateImage(image.Out()), bitmap);
    return Cast<IImageVPA>(image);
}

}  // namespace orlix
