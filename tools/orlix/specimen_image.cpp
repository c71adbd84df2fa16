#include "specimen_image.hpp"

#include <orlix/client.hpp>

#include <algorithm>

namespace tool {

using namespace orlix;

namespace {

template <class Pixel>
void Fill(const ComPtr<IImageVPAExPlus>& image, const std::vector<uint16_t>& pixels) {
    auto in = pixels.begin();
    for (const std::span<Pixel> row : Rows<Pixel>(image)) {
        std::transform(in, in + static_cast<std::ptrdiff_t>(row.size()), row.begin(),
                       [](uint16_t pixel) { return static_cast<Pixel>(pixel); });
        in += static_cast<std::ptrdiff_t>(row.size());
    }
}

}  // namespace

ComPtr<IImageVPAExPlus> ImageOf(const samples::Specimen& specimen) {
    const auto& s = specimen.settings;
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(s.width, s.height, 1, s.bits, 0), image);
    if (s.bits == 8)
        Fill<uint8_t>(image, specimen.pixels);
    else
        Fill<uint16_t>(image, specimen.pixels);
    return image;
}

Json TruthOf(const samples::Specimen& specimen) {
    const auto& s = specimen.settings;
    const double scale = specimen.levelScale;
    Json out;
    out["seed"] = s.seed;
    out["width"] = s.width;
    out["height"] = s.height;
    out["bits"] = s.bits;
    out["particleCount"] = specimen.particles.size();
    out["particleArea"] = specimen.particleArea;
    out["areaFraction"] = static_cast<double>(specimen.particleArea) / (static_cast<double>(s.width) * s.height);
    out["pitCount"] = s.pits;
    out["pitArea"] = specimen.pitArea;
    out["scratchCount"] = s.scratches;
    Json& background = out["background"];
    background["kind"] = s.background == samples::Background::Flat     ? "flat"
                         : s.background == samples::Background::Tilted ? "tilted"
                                                                       : "domed";
    background["formula"] = "k0 + k1 y + k2 x + k3 y^2 + k4 x y + k5 x^2";
    for (size_t i = 0; i < specimen.background.size(); ++i)
        background["k" + std::to_string(i)] = specimen.background[i];
    out["particleContrast"] = s.particleContrast * scale;
    out["scratchContrast"] = s.scratchContrast * scale;
    out["pitContrast"] = s.pitContrast * scale;
    out["noise"] = s.noise * scale;
    Json& particles = out["particles"] = Json::array();
    for (const samples::Particle& particle : specimen.particles)
        particles.push_back({{"xCentroid", particle.xCentroid},
                             {"yCentroid", particle.yCentroid},
                             {"area", particle.area},
                             {"shape", particle.ragged ? "ragged" : "round"}});
    return out;
}

}  // namespace tool
