// orlix info
#include "commands.hpp"
#include "console.hpp"
#include "document.hpp"
#include "subcommand.hpp"
#include "subject.hpp"

#include <orlix/client.hpp>

#include <iostream>
#include <memory>

namespace tool {

namespace {

constexpr char kFooter[] = R"(
Says how large each image is, of which type, how it is calibrated and which texts it carries.
With --json: an array with an object for each image, in the order given.

Examples:
  orlix info section.png
  orlix info --json *.png)";

Json InfoOf(const std::string& file) {
    const auto image = LoadImage(file);
    Json out;
    out["file"] = Utf8(Path(file).filename());
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

std::string TextOf(const Json& info) {
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
    return out;
}

}  // namespace

Command AddInfo(CLI::App& program) {
    struct Options {
        std::vector<std::string> files;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Subcommand command(program, "info", "Say what image files hold", kFooter);
    command.Add("IMAGE", options->files, "PNG, BMP, PGM or PPM files").Required();
    command.AddFlag("--json", options->json, "As JSON");
    return [options] {
        Json all = Json::array();
        int code = kDone;
        for (const std::string& file : options->files) try {
                all.push_back(InfoOf(file));
                if (!options->json) std::cout << TextOf(all.back());
            } catch (const orlix::Error& error) {
                if (error.result() == REGDB_E_CLASSNOTREG || error.result() == CO_E_CLASSSTRING) throw;
                std::cerr << "orlix: " << file << ": " << error.what() << std::endl;
                all.push_back({{"file", Utf8(Path(file).filename())}, {"error", error.what()}});
                code = kFailed;
            }
        if (options->json) std::cout << Print(all);
        return code;
    };
}

}  // namespace tool
