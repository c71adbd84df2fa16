// orlix save and orlix load
#include "commands.hpp"
#include "console.hpp"
#include "subcommand.hpp"
#include "subject.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kSaveFooter[] = R"(
The stream holds pixels, pixel size, description, texts and settings of one image; 'orlix load'
makes an image file of it. Programs load it with IPersistStreamInit.

Example:
  orlix save section.png section.orlix)";

constexpr char kLoadFooter[] = R"(
STREAM is what 'orlix save' or a program has written with IPersistStreamInit. The format follows the
name of OUT: .png (grey or colour), .pgm (grey), .ppm (colour), 8 or 16 bits; with any other name OUT
becomes a stream again.

Example:
  orlix load section.orlix section.png)";

struct Files {
    std::string in, out;
};

void SaveStream(const ComPtr<IImageVPAExPlus>& image, const std::string& file) {
    const auto persist = Cast<IPersistStreamInitEx>(image);
    Check(persist->Save(CreateFileStream(file).get(), TRUE), persist);
}

int Save(const Files& files) {
    SaveStream(LoadImage(files.in), files.out);
    return kDone;
}

int Load(const Files& files) {
    const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    const auto persist = Cast<IPersistStreamInitEx>(image);
    Check(persist->Load(OpenFileStream(files.in).get()), persist);
    std::string extension = files.out.substr(std::min(files.out.rfind('.'), files.out.size()));
    for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (extension != ".png" && extension != ".pgm" && extension != ".ppm") {
        SaveStream(image, files.out);
        return kDone;
    }
    const auto file = Cast<IImageFile>(image);
    Check(file->SaveToFile(Text(files.out), IFF_ByExtension), file);
    return kDone;
}

}  // namespace

Command AddSave(CLI::App& program) {
    const auto files = std::make_shared<Files>();
    Subcommand command(program, "save", "Save an image as a stream, with its settings", kSaveFooter);
    command.Add("IMAGE", files->in, "PNG, BMP, PGM or PPM file").Required();
    command.Add("OUT", files->out, "File to write").Required();
    return [files] { return Save(*files); };
}

Command AddLoad(CLI::App& program) {
    const auto files = std::make_shared<Files>();
    Subcommand command(program, "load", "Make an image file of a stream", kLoadFooter);
    command.Add("STREAM", files->in, "Stream of an image").Required();
    command.Add("OUT", files->out, "File to write").Required();
    return [files] { return Load(*files); };
}

}  // namespace tool
