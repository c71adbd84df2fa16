#include "image_file.hpp"

#include "console.hpp"
#include "interruption.hpp"
#include "subcommand.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>

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

// The image files that the library writes, as IFF_ByExtension knows them.
struct OutputFormat {
    std::string_view extension;
    bool holdsProperties;  // pixel size and texts
};
constexpr OutputFormat kOutputFormats[] = {{".png", true}, {".pgm", false}, {".ppm", false}};

const OutputFormat* FormatOfName(std::string_view file) {
    const auto found = std::ranges::find(kOutputFormats, Extension(file), &OutputFormat::extension);
    return found == std::end(kOutputFormats) ? nullptr : found;
}

}  // namespace

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

ComPtr<IImageVPAExPlus> LoadOptions::NewImage() const {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    if (maxSamples) {
        const auto file = Cast<IImageFile>(image);
        Check(file->put_SampleLimit(*maxSamples), file);
    }
    return image;
}

ComPtr<IImageVPAExPlus> LoadOptions::Load(const std::string& file) const {
    auto image = NewImage();
    ReadThrough(file, [&](const std::string& path) { Check(image->CreateFromFile(Text(path)), image); });
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
    if (const OutputFormat* format = FormatOfName(file); !format || format->holdsProperties) return;
    const auto imageFile = Cast<IImageFile>(image);
    double x = 0, y = 0;
    if (Check(imageFile->GetMicronsPerPixel(&x, &y), imageFile) == S_OK)
        Warn(document, "calibration-lost",
             file + " does not hold the pixel size (" + Number(x) + " x " + Number(y) +
                 " µm): PGM and PPM have no place for it, PNG has");
    const auto entries = Cast<IImageEntries>(image);
    LONG texts = 0;
    Check(entries->get_NumberOfTextEntries(&texts), entries);
    if (texts > 0)
        Warn(document, "texts-lost",
             file + " does not hold the image's " + std::to_string(texts) + (texts == 1 ? " text" : " texts") +
                 ": PGM and PPM have no place for them, PNG has");
}

void CheckOutput(const std::string& output, const std::vector<std::string>& inputs, bool force) {
    RefuseTerminal(output);
    std::error_code ignored;
    for (const std::string& input : inputs)
        if (!force && output != "-" && input != "-" && std::filesystem::equivalent(Path(input), Path(output), ignored))
            throw UsageError("the result would replace the input " + output + "; name another file, or give --force");
}

}  // namespace tool
