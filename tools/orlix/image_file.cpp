#include "image_file.hpp"

#include "console.hpp"
#include "interruption.hpp"
#include "raw_image.hpp"
#include "subcommand.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace tool {

using namespace orlix;

TemporaryFile::TemporaryFile(std::string_view extension) {
    static std::atomic<unsigned> count{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    path_ = std::filesystem::temp_directory_path() /
            Path("orlix-" + std::to_string(now) + "-" + std::to_string(count++) + std::string(extension));
    Unfinished::Remember(path_);
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    Unfinished::Forget(path_);
}

void ReadThrough(const std::string& file, const std::function<void(const std::string& path)>& read) {
    if (file != "-" && ValidUtf8(file) == file) {
        try {
            read(file);
        } catch (const Error& error) {
            const std::string reason = WhyNotRead(Path(file));
            if (reason.empty()) throw;
            const std::string text = error.message().empty() ? "cannot read the file" : error.message();
            throw Error(error.result(), text + " (" + file + ": " + reason + ")", error.source());
        }
        return;
    }
    const TemporaryFile copy;
    WriteFile(copy.path(), ReadInput(file));
    read(Utf8(copy.path()));
}

void WriteThrough(const std::string& file, const std::function<void(const std::string& path)>& write) {
    const bool direct = file != "-" && ValidUtf8(file) == file;
    const TemporaryFile copy(file == "-" ? std::string() : Extension(file));
    const std::string path = direct ? file : Utf8(copy.path());
    Unfinished::RememberFolder(Path(path).parent_path());
    try {
        write(path);
    } catch (const Error& error) {
        const std::string reason = WhyWritingFailed(Path(path));
        throw OutputError("cannot write " + path + ": " + (reason.empty() ? "" : reason + ". ") + error.what());
    }
    if (file == "-")
        std::cout << ReadFile(copy.path()) << std::flush;
    else if (!direct)
        WriteFile(Path(file), ReadFile(copy.path()));
}

namespace {

// What files of a format hold besides the pixels.
enum class Holds { Pixels, PixelSize, All };

// The formats of the library, for help texts and warnings.
struct ImageFormat {
    std::string_view name;
    std::string_view extensions;  // as IFF_ByExtension knows them, a blank between two
    Holds holds;
};
constexpr ImageFormat kFormats[] = {
    {"PNG", ".png", Holds::All},        {"BMP", ".bmp", Holds::PixelSize},  {"PGM", ".pgm", Holds::Pixels},
    {"PPM", ".ppm", Holds::Pixels},     {"PAM", ".pam", Holds::Pixels},     {"PFM", ".pfm", Holds::Pixels},
    {"TIFF", ".tif .tiff", Holds::All}, {"JPEG", ".jpg .jpeg", Holds::All},
};

const ImageFormat* FormatOfName(std::string_view file) {
    const std::string wanted = Extension(file);
    const auto found = std::ranges::find_if(kFormats, [&](const ImageFormat& format) {
        const std::string known = " " + std::string(format.extensions) + " ";
        return !wanted.empty() && known.find(" " + wanted + " ") != std::string::npos;
    });
    return found == std::end(kFormats) ? nullptr : found;
}

std::string FormatNames(const char* noun) {
    std::string names;
    for (const ImageFormat& format : kFormats)
        names += std::string(&format == kFormats                 ? ""
                             : &format == std::end(kFormats) - 1 ? " or "
                                                                 : ", ") +
                 std::string(format.name);
    return names + " " + noun + "; - is standard input";
}

std::string Extensions() {
    std::string extensions;
    for (const ImageFormat& format : kFormats)
        extensions += (extensions.empty() ? "" : " ") + std::string(format.extensions);
    return extensions;
}

// Whether the map is that of an image, or of a rectangle cut out of one, without a frame of its own.
bool IsPlain(const TCoordinateMap& map) {
    const TMatrix& matrix = map.Matrix;
    return matrix.A11 == 1 && matrix.A12 == 0 && matrix.A21 == 0 && matrix.A22 == 1;
}

}  // namespace

const std::string kImageFile = FormatNames("file"), kImageFiles = FormatNames("files"), kOutputNames = Extensions();

bool IsImageName(std::string_view file) { return FormatOfName(file) != nullptr; }

std::string ReadInput(const std::string& file) {
    if (file != "-") return ReadFile(Path(file));
    std::string content{std::istreambuf_iterator<char>(std::cin), {}};
    if (content.empty()) throw std::runtime_error("standard input is empty");
    return content;
}

void LoadOptions::Add(Subcommand& command) {
    command
        .Add("--max-samples", maxSamples, "Refuse images of more pixels times bands (default 268435456; 0: no limit)")
        .NotNegative();
}

void LoadOptions::AddPages(Subcommand& command) {
    Add(command);
    command.Add("--page", page, "Image of a file with several, from 0").NotNegative();
    command
        .Add("--raw", raw,
             "Read files without a header: " + std::string(RawLayout::kForm) + ", TYPE one of " +
                 RawLayout::TypeNames() + "; OFFSET and ROWBYTES (-: bottom row first) in bytes")
        .Named("LAYOUT")
        .Checked([](const std::string& layout) { RawLayout{layout}; });
}

ComPtr<IImageVPAExPlus> LoadOptions::NewImage() const {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    if (maxSamples) {
        const auto file = Cast<IImageFile>(image);
        Check(file->put_SampleLimit(*maxSamples), file);
    }
    return image;
}

void LoadOptions::LoadRaw(const std::string& file, const ComPtr<IImageVPAExPlus>& image, int64_t* pages) const {
    const RawLayout layout(raw);
    const auto imageFile = Cast<IImageFile>(image);
    LONG limit = 0;
    Check(imageFile->get_SampleLimit(&limit), imageFile);
    if (limit > 0 && layout.samples() > limit)
        throw std::runtime_error("the image has " + std::to_string(layout.samples()) +
                                 " samples, more than the limit of " + std::to_string(limit));
    const auto read = [&](std::istream& stream) {
        layout.Read(stream, page, image);
        stream.clear();
        if (pages) *pages = static_cast<int64_t>(layout.Frames(SizeOf(stream)));
    };
    if (file == "-") {
        std::istringstream stream(ReadInput(file));
        read(stream);
    } else {
        const std::string reason = WhyNotRead(Path(file));
        if (!reason.empty()) throw std::runtime_error("cannot read " + file + ": " + reason);
        std::ifstream stream(Path(file), std::ios::binary);
        read(stream);
    }
}

ComPtr<IImageVPAExPlus> LoadOptions::Load(const std::string& file, int64_t* pages) const {
    auto image = NewImage();
    if (!raw.empty()) {
        LoadRaw(file, image, pages);
        return image;
    }
    ReadThrough(file, [&](const std::string& path) {
        const auto imageFile = Cast<IImageFile>(image);
        Check(imageFile->LoadFromFile(Text(path), page), imageFile);
        LONG count = 0;
        if (pages) {
            Check(imageFile->GetNumberOfPages(Text(path), &count), imageFile);
            *pages = count;
        }
    });
    return image;
}

void Sign(const ComPtr<IImageVPAExPlus>& image) {
    const auto entries = Cast<IImageEntries>(image);
    Check(entries->PutTextEntry(Text("Software"), Text("Orlix " ORLIX_TOOL_VERSION)), entries);
}

bool IsSigned(const std::filesystem::path& path) {
    constexpr std::string_view kPng = "\x89PNG\r\n\x1a\n", kText("tEXtSoftware\0Orlix ", 19);
    constexpr size_t kHead =
        4096;  // in PNG files texts precede the pixels; pages and documents name their generator at the beginning
    std::ifstream file(path, std::ios::binary);
    std::string head(kHead, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<size_t>(file.gcount()));
    if (head.starts_with(kPng)) return head.find(kText) != std::string::npos;
    if (head.starts_with("file,error,unit,number,")) return true;  // the columns of a list of particles
    constexpr size_t kBeginning = 100;
    return head.find("<meta name='generator' content='Orlix ") != std::string::npos ||
           (head.starts_with('{') && head.substr(0, kBeginning).find("\"tool\": \"orlix\"") != std::string::npos);
}

void SaveImage(const ComPtr<IImageVPAExPlus>& image, const std::string& file, ImageFileFormat format) {
    const auto imageFile = Cast<IImageFile>(image);
    if (format == IFF_ByExtension && file == "-") format = IFF_PNG;
    WriteThrough(file, [&](const std::string& path) { Check(imageFile->SaveToFile(Text(path), format), imageFile); });
}

void WarnOfLosses(const ComPtr<IImageVPAExPlus>& image, const std::string& file, Json& document) {
    const ImageFormat* const format = FormatOfName(file);
    if (!format || format->holds == Holds::All) return;
    const auto warn = [&](std::string_view code, const std::string& what, const char* them) {
        Warn(document, code,
             file + " does not hold " + what + ": " + std::string(format->name) + " has no place for " + them +
                 ", PNG has");
    };
    const auto imageFile = Cast<IImageFile>(image);
    double x = 0, y = 0;
    if (format->holds == Holds::Pixels && Check(imageFile->GetMicronsPerPixel(&x, &y), imageFile) == S_OK)
        warn("calibration-lost", "the pixel size (" + Number(x) + " x " + Number(y) + " µm)", "it");
    TCoordinateMap map = {};
    Check(image->GetCoords(&map), image);
    if (!IsPlain(map)) warn("coordinates-lost", "the image's coordinate map", "it");
    const auto entries = Cast<IImageEntries>(image);
    LONG texts = 0;
    Check(entries->get_NumberOfTextEntries(&texts), entries);
    if (texts > 0)
        warn("texts-lost", "the image's " + std::to_string(texts) + (texts == 1 ? " text" : " texts"), "them");
}

void CheckOutput(const std::string& output, const std::vector<std::string>& inputs, bool force) {
    RefuseTerminal(output);
    std::error_code ignored;
    for (const std::string& input : inputs)
        if (!force && output != "-" && input != "-" && std::filesystem::equivalent(Path(input), Path(output), ignored))
            throw UsageError("the result would replace the input " + output + "; name another file, or give --force");
}

}  // namespace tool
