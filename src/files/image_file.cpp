#include "files/image_file.hpp"

#include <algorithm>

#include "component/failure.hpp"
#include "files/bmp.hpp"
#include "files/png.hpp"
#include "files/pnm.hpp"
#include "platform/file_io.hpp"

namespace orlix {
namespace {

using Reader = FileProperties (*)(std::span<const uint8_t>, PixelSink&, const SampleLimit&);

// By the first bytes.
Reader ReaderFor(std::span<const uint8_t> bytes) {
    if (LooksLikePng(bytes)) return &ReadPng;
    if (LooksLikeBmp(bytes)) return &ReadBmp;
    if (LooksLikePnm(bytes)) return &ReadPnm;
    throw Failure("IImageVPAEx::CreateFromFile: unknown file format.", DISP_E_EXCEPTION);
}

FileContent Load(WideStringView path, size_t maximum) {
    FileContent content;
    switch (ReadWholeFile(path, content, maximum)) {
        case ReadStatus::Done:
            break;
        case ReadStatus::CannotOpen:
            throw Failure("IImageVPAEx::CreateFromFile: failed to open file.", DISP_E_EXCEPTION);
        case ReadStatus::CannotRead:
            throw Failure("IImageVPAEx::CreateFromFile: failed to read file.", DISP_E_EXCEPTION);
    }
    return content;
}

bool EndsWith(WideStringView text, std::string_view lowerCase) {
    if (text.size() < lowerCase.size()) return false;
    const WideStringView end = text.substr(text.size() - lowerCase.size());
    return std::equal(end.begin(), end.end(), lowerCase.begin(),
                      [](OLECHAR c, char wanted) { return (c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c) == wanted; });
}

ImageFileFormat FormatOfName(WideStringView path) {
    if (EndsWith(path, ".png")) return IFF_PNG;
    if (EndsWith(path, ".pgm")) return IFF_PGM;
    if (EndsWith(path, ".ppm")) return IFF_PPM;
    return IFF_ByExtension;
}

}  // namespace

FileProperties ReadImageFile(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit) {
    return ReaderFor(bytes)(bytes, sink, limit);
}

FileProperties LoadImageFile(WideStringView path, PixelSink& sink, const SampleLimit& limit) {
    // A look at the start keeps a huge file that is no image from being read.
    constexpr size_t kStart = 16;
    ReaderFor(Load(path, kStart).bytes());
    return ReadImageFile(Load(path, std::numeric_limits<size_t>::max()).bytes(), sink, limit);
}

std::vector<uint8_t> WriteImageFile(ImageFileFormat format, const FileProperties& properties, PixelSource& source) {
    if (properties.width <= 0 || properties.height <= 0) throw Failure("IImageFile::SaveToFile: no image.");
    const bool grey = format == IFF_PGM || format == IFF_PlainPGM;
    const bool colour = format == IFF_PPM || format == IFF_PlainPPM;
    if (format != IFF_PNG && !grey && !colour) throw Failure("IImageFile::SaveToFile: unknown file format.");
    if (properties.bits != 8 && properties.bits != 16)
        throw Failure("IImageFile::SaveToFile: the format holds 8- and 16-bit images only.");
    if (!(properties.bands == 1 && !colour) && !(properties.bands == 3 && !grey))
        throw Failure("IImageFile::SaveToFile: the format does not hold this number of bands.");

    if (format == IFF_PNG) return WritePng(properties, source);
    return WritePnm(format == IFF_PlainPGM || format == IFF_PlainPPM, properties, source);
}

void SaveImageFile(WideStringView path, ImageFileFormat format, const FileProperties& properties, PixelSource& source) {
    if (format == IFF_ByExtension) format = FormatOfName(path);
    if (!WriteWholeFile(path, WriteImageFile(format, properties, source)))
        throw Failure("IImageFile::SaveToFile: failed to write file.");
}

bool IsFileKeyword(WideStringView keyword) noexcept {
    if (keyword.empty() || keyword.size() > 79 || keyword.front() == ' ' || keyword.back() == ' ') return false;
    for (size_t i = 0; i < keyword.size(); ++i) {
        const OLECHAR c = keyword[i];
        if (!(c >= 32 && c < 127) && !(c > 160 && c < 256)) return false;
        if (c == ' ' && keyword[i - 1] == ' ') return false;  // not the first, see above
    }
    return true;
}

}  // namespace orlix
