#include "files/image_file.hpp"

#include <algorithm>
#include <limits>
#include <string_view>

#include "component/failure.hpp"
#include "files/file_formats.hpp"
#include "platform/file_io.hpp"

namespace orlix {
namespace {

// The first format of the table for which the condition holds, or null.
template <class Condition>
const FileFormat* FindFormat(Condition condition) {
    const auto formats = FileFormats();
    const auto found = std::ranges::find_if(formats, condition);
    return found == formats.end() ? nullptr : &*found;
}

const FileFormat& FormatOfContent(std::span<const uint8_t> bytes) {
    const auto start = bytes.first(std::min(bytes.size(), kLooksLikeBytes));
    const FileFormat* format = FindFormat([&](const FileFormat& known) { return known.looksLike(start); });
    if (!format) throw Failure("IImageVPAEx::CreateFromFile: unknown file format.", DISP_E_EXCEPTION);
    return *format;
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

bool EndsWithAny(WideStringView path, std::string_view extensions) {
    while (!extensions.empty()) {
        const std::string_view first = extensions.substr(0, extensions.find(' '));
        if (EndsWith(path, first)) return true;
        extensions.remove_prefix(std::min(first.size() + 1, extensions.size()));
    }
    return false;
}

ImageFileFormat FormatOfPath(WideStringView path) {
    const FileFormat* format = FindFormat([&](const FileFormat& known) { return EndsWithAny(path, known.extensions); });
    return format ? format->code : IFF_ByExtension;
}

bool Contains(std::span<const int32_t> values, int32_t value) {
    return std::ranges::find(values, value) != values.end();
}

const char* OtherTypesText(const FileFormat& format) {
    const auto largest = format.types.empty() ? DT_Float : *std::ranges::max_element(format.types);
    return largest == DT_BYTE   ? "IImageFile::SaveToFile: the format holds 8-bit images only."
           : largest == DT_WORD ? "IImageFile::SaveToFile: the format holds 8- and 16-bit images only."
                                : "IImageFile::SaveToFile: the format does not hold this type of pixels.";
}

}  // namespace

FileProperties ReadImageFile(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const FileFormat& format = FormatOfContent(bytes);
    // Readers that know pages of their own refuse the others.
    if (options.page < 0 || (options.page > 0 && !format.pages))
        throw Failure("IImageFile::LoadFromFile: the file has no such page.", DISP_E_EXCEPTION);
    return format.read(bytes, sink, options);
}

FileProperties LoadImageFile(WideStringView path, PixelSink& sink, const ReadOptions& options) {
    // A look at the start saves reading a huge file that is no image.
    FormatOfContent(Load(path, kLooksLikeBytes).bytes());
    return ReadImageFile(Load(path, std::numeric_limits<size_t>::max()).bytes(), sink, options);
}

int32_t PagesOfImageFile(WideStringView path) {
    const FileContent start = Load(path, kLooksLikeBytes);
    const FileFormat& format = FormatOfContent(start.bytes());
    return format.pages ? format.pages(Load(path, std::numeric_limits<size_t>::max()).bytes()) : 1;
}

std::vector<uint8_t> WriteImageFile(ImageFileFormat format, const FileProperties& properties, PixelSource& source,
                                    const WriteOptions& options) {
    if (properties.width <= 0 || properties.height <= 0) throw Failure("IImageFile::SaveToFile: no image.");
    const FileFormat* row = FindFormat([&](const FileFormat& known) { return known.code == format && known.write; });
    if (!row) throw Failure("IImageFile::SaveToFile: unknown file format.");
    if (std::ranges::find(row->types, properties.dataType) == row->types.end()) throw Failure(OtherTypesText(*row));
    if (!row->bands.empty() && !Contains(row->bands, properties.bands))
        throw Failure("IImageFile::SaveToFile: the format does not hold this number of bands.");
    return row->write(properties, source, options);
}

void SaveImageFile(WideStringView path, ImageFileFormat format, const FileProperties& properties, PixelSource& source,
                   const WriteOptions& options) {
    if (format == IFF_ByExtension) format = FormatOfPath(path);
    if (!WriteWholeFile(path, WriteImageFile(format, properties, source, options)))
        throw Failure("IImageFile::SaveToFile: failed to write file.");
}

}  // namespace orlix
