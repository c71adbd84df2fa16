// orlix info
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "document.hpp"
#include "image_file.hpp"
#include "subcommand.hpp"
#include "subject.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <iostream>
#include <memory>

namespace tool {

namespace {

constexpr char kInfoFooter[] = R"(
Says how large each image is, of which type, how it is calibrated and which texts it carries.
With --json one document {..., images: [...]}, an object for each image in the order given.

Examples:
  orlix info section.png
  orlix info --json *.png)";

Json InfoOf(const LoadOptions& load, const std::string& file, const std::string& name) {
    const auto image = load.Load(file);
    Json out;
    out["file"] = name;
    LONG bands = 0, width = 0, height = 0, type = 0;
    orlix::Check(image->Dimensions(&bands, &width, &height), image);
    orlix::Check(image->DataType(0, &type), image);
    out["width"] = width;
    out["height"] = height;
    out["bands"] = bands;
    out["type"] = TypeName(type);

    const auto imageFile = orlix::Cast<IImageFile>(image);
    double x = 0, y = 0;
    Json& size = out["micronsPerPixel"];
    if (orlix::Check(imageFile->GetMicronsPerPixel(&x, &y), imageFile) == S_OK) {
        size["x"] = x;
        size["y"] = y;
    }
    Json& texts = out["texts"] = Json::object();
    const auto entries = orlix::Cast<IImageEntries>(image);
    LONG count = 0;
    orlix::Check(entries->get_NumberOfTextEntries(&count), entries);
    for (LONG i = 0; i < count; ++i) {
        orlix::Text keyword, text;
        orlix::Check(entries->GetTextEntry(i, keyword.Out(), text.Out()), entries);
        texts[keyword.Utf8()] = text.Utf8();
    }
    return out;
}

std::string InfoText(const Json& info) {
    std::string out = info["file"].get<std::string>() + "\n  " + info["width"].dump() + " x " + info["height"].dump() +
                      " pixels, " + info["type"].get<std::string>() + ", " + info["bands"].dump() +
                      (info["bands"] == 1 ? " band" : " bands");
    const Json& size = info["micronsPerPixel"];
    if (size.is_null())
        out += ", not calibrated\n";
    else
        out += ", " + Number(size["x"]) + " x " + Number(size["y"]) + " µm per pixel\n";
    for (const auto& [keyword, text] : info["texts"].items())
        out += "  " + keyword + ": " + text.get<std::string>() + "\n";
    for (const Json& warning : Warnings(info)) out += "  warning: " + warning["message"].get<std::string>() + "\n";
    return out;
}

}  // namespace

Command AddInfo(CLI::App& program) {
    struct InfoOptions {
        LoadOptions load;
        std::vector<std::string> files;
        bool json = false;
    };
    const auto options = std::make_shared<InfoOptions>();
    Subcommand command(program, "info", "Say what image files hold", kInfoFooter);
    command.Add("IMAGE", options->files, kImageFiles).Required();
    options->load.Add(command);
    command.AddFlag("--json", options->json, "As JSON");
    return [options, command] {
        Batch batch = RunBatch(
            options->files,
            [&](size_t i, const std::string& name, Progress&) {
                return InfoOf(options->load, options->files[i], name);
            },
            [&](const Json& info) {
                if (!options->json && !info.contains("error")) std::cout << InfoText(info) << std::flush;
            });
        if (options->json) {
            Json document = command.Envelope();
            document["images"] = std::move(batch.images);
            document["warnings"] = std::move(batch.warnings);
            std::cout << Print(document);
        }
        return batch.code();
    };
}

}  // namespace tool
