// orlix save and orlix load
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"

#include <orlix/client.hpp>

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
name of OUT, as of 'orlix convert'; with any other name OUT becomes a stream again.

Example:
  orlix load section.orlix section.png)";

struct Files {
    std::string in, out;
    bool force = false, json = false;
    LoadOptions load;

    void Refuse() const {
        CheckOutput(out, {in}, force);
        if (out == "-" && json) throw UsageError("standard output holds the result, so --json has no place");
    }
    Json Document() const { return {{"file", ShownNames({in})[0]}, {"output", out}}; }
};

void SaveStream(const ComPtr<IImageVPAExPlus>& image, const std::string& file) {
    const auto persist = Cast<IPersistStreamInitEx>(image);
    WriteThrough(file,
                 [&](const std::string& path) { Check(persist->Save(CreateFileStream(path).get(), TRUE), persist); });
}

int Save(const Files& files, const Subcommand& command) {
    files.Refuse();
    SaveStream(files.load.Load(files.in), files.out);
    PrintOne(command, files.Document(), files.json);
    return kDone;
}

int Load(const Files& files, const Subcommand& command) {
    files.Refuse();
    const auto image = files.load.NewImage();
    const auto persist = Cast<IPersistStreamInitEx>(image);
    ReadThrough(files.in, [&](const std::string& path) { Check(persist->Load(OpenFileStream(path).get()), persist); });
    Json document = files.Document();
    if (files.out == "-" || IsImageName(files.out)) {
        SaveImage(image, files.out, IFF_ByExtension);
        WarnOfLosses(image, files.out, document);
    } else {
        SaveStream(image, files.out);
    }
    PrintOne(command, std::move(document), files.json);
    return kDone;
}

void AddOptions(Subcommand& command, Files& files) {
    command.AddFlag("--force", files.force, "Replace the input itself");
    command.AddFlag("--json", files.json, "Warnings as JSON");
}

}  // namespace

Command AddSave(CLI::App& program) {
    const auto files = std::make_shared<Files>();
    Subcommand command(program, "save", "Save an image as a stream, with its settings", kSaveFooter);
    command.Add("IMAGE", files->in, kImageFile).Required();
    command.Add("OUT", files->out, "File to write, or - for standard output").Required();
    files->load.AddPages(command);
    AddOptions(command, *files);
    return [files, command] { return Save(*files, command); };
}

Command AddLoad(CLI::App& program) {
    const auto files = std::make_shared<Files>();
    Subcommand command(program, "load", "Make an image file of a stream", kLoadFooter);
    command.Add("STREAM", files->in, "Stream of an image, or - for standard input").Required();
    command.Add("OUT", files->out, "File to write, or - for standard output").Required();
    files->load.Add(command);
    AddOptions(command, *files);
    return [files, command] { return Load(*files, command); };
}

}  // namespace tool
