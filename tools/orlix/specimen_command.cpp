// orlix specimen
#include "batch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "image_file.hpp"
#include "specimen_image.hpp"
#include "subcommand.hpp"

#include <orlix/client.hpp>

#include <memory>

namespace tool {

using namespace orlix;

namespace {

constexpr char kSpecimenFooter[] = R"(
Writes an image of a polished surface under uneven light, with particles, scratches, pits and
noise, and OUT.json beside it with the truth: number, area and centroid of the particles, the
background's coefficients, noise and contrasts in the grey levels of the image.
The same settings give the same pixels on every platform. Grey levels are given as those of an
8-bit image; 16-bit images have 257 times as many.

Examples:
  orlix specimen test.png
  orlix specimen large.png --seed 3 --width 2048 --height 2048 --particles 600 --background domed
  orlix specimen clean16.png --bits 16 --scratches 0 --pits 0 --noise 0 --background flat
  orlix specimen bright.png --matrix 60 --contrast 110)";

struct SpecimenOptions {
    std::string out, background = "tilted";
    samples::SpecimenSettings settings;
    double pixelSize = 0;
    bool force = false, json = false;
};

int WriteSpecimen(SpecimenOptions& options, const Subcommand& command) {
    CheckOutput(options.out, {}, options.force);
    std::filesystem::path truth;
    if (options.out != "-") truth = Path(options.out).replace_extension(".json");
    if (!options.force && std::filesystem::exists(truth) && !IsSigned(truth))
        throw UsageError("the truth would replace " + Utf8(truth) +
                         ", which is not the truth of a specimen; name another image, or give --force");
    if (options.out == "-" && options.json) throw UsageError("standard output holds the image, so --json has no place");

    using samples::Background;
    options.settings.background = options.background == "flat"     ? Background::Flat
                                  : options.background == "tilted" ? Background::Tilted
                                                                   : Background::Domed;
    samples::Specimen specimen;
    try {
        specimen = samples::MakeSpecimen(options.settings);
    } catch (const std::invalid_argument& error) {
        throw UsageError(error.what());
    }
    const auto image = ImageOf(specimen);
    const auto file = Cast<IImageFile>(image);
    if (options.pixelSize != 0) Check(file->PutMicronsPerPixel(options.pixelSize, options.pixelSize), file);
    SaveImage(image, options.out, IFF_ByExtension);
    Json document = {{"output", options.out}};
    if (!truth.empty()) {
        Json text = {{"tool", "orlix"}};  // tells a later run that it may replace the file
        text.update(TruthOf(specimen));
        WriteFile(truth, Print(text));
        document["truth"] = Utf8(truth);
    }
    WarnOfLosses(image, options.out, document);
    PrintOne(command, std::move(document), options.json);
    return kDone;
}

}  // namespace

Command AddSpecimen(CLI::App& program) {
    const auto options = std::make_shared<SpecimenOptions>();
    auto& s = options->settings;
    Subcommand command(program, "specimen", "Make a synthetic specimen with known truth", kSpecimenFooter);
    command.Add("OUT", options->out, "Image to write: .png or .pgm, or - for PNG on standard output, without its truth")
        .Required();
    const auto add = [&](const char* name, auto& value, const char* description) {
        command.Add(name, value, description).ShowDefault();
    };
    add("--seed", s.seed, "Start of the random numbers");
    add("--width", s.width, "Pixels");
    add("--height", s.height, "Pixels");
    add("--bits", s.bits, "8 or 16");
    add("--particles", s.particles, "Number of particles");
    add("--min-radius", s.minimumRadius, "Of the particles, in pixels");
    add("--max-radius", s.maximumRadius, "Of the particles, in pixels");
    add("--gap", s.gap, "Least distance between particles, in pixels; below 0 they touch and overlap");
    add("--ragged", s.raggedShare, "Share of ragged particles, 0 to 1");
    add("--matrix", s.matrixGrey, "Grey level of the surface, about");
    add("--contrast", s.particleContrast, "Grey levels of the particles against the surface; above 0: bright ones");
    command.Add("--background", options->background, "flat, tilted or domed")
        .OneOf(std::vector<std::string>{"flat", "tilted", "domed"})
        .ShowDefault();
    add("--span", s.backgroundSpan, "Grey levels between the darkest and brightest place of the background");
    add("--scratches", s.scratches, "Number of scratches");
    add("--pits", s.pits, "Number of pits");
    add("--noise", s.noise, "Standard deviation in grey levels");
    command.Add("--pixel-size", options->pixelSize, "Microns per pixel to write into the file")
        .Positive()
        .Named("MICRONS");
    command.AddFlag("--force", options->force, "Replace an OUT.json of other origin");
    command.AddFlag("--json", options->json, "Names and warnings as JSON");
    return [options, command] { return WriteSpecimen(*options, command); };
}

}  // namespace tool
