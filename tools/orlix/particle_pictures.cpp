#include "particle_pictures.hpp"

#include "glyphs.hpp"
#include "label_places.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace tool {

using namespace orlix;

namespace {

constexpr std::array<uint8_t, 3> kOutline = {255, 106, 0}, kNumber = {255, 255, 255}, kHalo = {0, 0, 0};

// A bright colour of the given hue, 0 to 1 around the circle of colours.
std::array<uint8_t, 3> BrightColour(double hue, double least) {
    std::array<uint8_t, 3> colour = {};
    for (size_t i = 0; i < 3; ++i) {
        const double at = std::fmod(hue * 6 + (i == 0 ? 5 : i == 1 ? 3 : 1), 6);
        const double share = 1 - (1 - least) * std::clamp(std::min(at, 4 - at), 0.0, 1.0);
        colour[i] = static_cast<uint8_t>(std::floor(255 * share + 0.5));
    }
    return colour;
}

void DrawWithHalo(Picture& picture, int32_t left, int32_t top, int32_t dot, const std::string& text) {
    for (const int32_t y : {-dot, 0, dot})
        for (const int32_t x : {-dot, 0, dot})
            if (x != 0 || y != 0) DrawLettering(picture, left + x, top + y, dot, text, kHalo);
    DrawLettering(picture, left, top, dot, text, kNumber);
}

}  // namespace

LabelRows::LabelRows(const ComPtr<IBlobs>& blobs) {
    ComPtr<IImageVPA> image;
    Check(blobs->get_LabelImage(image.Out()), blobs);
    for (const std::span<uint32_t> row : Rows<uint32_t>(image, 0)) {
        width_ = static_cast<int32_t>(row.size());
        ++height_;
        labels_.insert(labels_.end(), row.begin(), row.end());
    }
}

bool LabelRows::AtEdge(int32_t x, int32_t y) const {
    const uint32_t label = at(x, y);
    return label != 0 &&
           (at(x - 1, y) != label || at(x + 1, y) != label || at(x, y - 1) != label || at(x, y + 1) != label);
}

std::vector<SBinaryMeasurements> InscribedCircles(const ComPtr<IBlobs>& blobs) {
    LONG count = 0;
    Check(blobs->get_Count(&count), blobs);
    std::vector<SBinaryMeasurements> circles(static_cast<size_t>(count));
    if (count > 0)
        Check(blobs->GetBinaryMeasurements(BEMT_InscribedCircle | BEMT_Topology, 0, count, circles.data()), blobs);
    return circles;
}

Picture OutlinesPicture(const Picture& display, const LabelRows& labels,
                        const std::vector<SBinaryMeasurements>& circles) {
    Picture picture = {display.width, display.height, 3, {}};
    picture.samples.reserve(3 * display.samples.size());
    for (int32_t y = 0; y < display.height; ++y)
        for (int32_t x = 0; x < display.width; ++x) {
            const uint8_t grey =
                display.samples[static_cast<size_t>(y) * static_cast<size_t>(display.width) + static_cast<size_t>(x)];
            const bool outline = labels.AtEdge(x, y);
            for (size_t channel = 0; channel < 3; ++channel)
                picture.samples.push_back(outline ? kOutline[channel] : grey);
        }
    const int32_t dot = 1 + std::max(display.width, display.height) / 2000;
    LabelPlaces places(display.width, display.height);
    for (size_t i = 0; i < circles.size(); ++i) {
        const SBinaryMeasurements& of = circles[i];
        const std::string text = std::to_string(i + 1);
        const int32_t width = LetteringWidth(text, dot) + 2 * dot, height = (kGlyphHeight + 1) * dot;  // with the halo
        const LabelBox particle{static_cast<double>(of.m_lLeft), static_cast<double>(of.m_lTop),
                                static_cast<double>(of.m_lRight), static_cast<double>(of.m_lBottom)};
        const bool fits = of.m_lRight - of.m_lLeft > width && of.m_lBottom - of.m_lTop > height;
        const LabelBox box =
            places.Take(particle, of.m_dInscribedXCenter, of.m_dInscribedYCenter, fits, width, height, dot);
        DrawWithHalo(picture, static_cast<int32_t>(std::lround(box.left)) + dot,
                     static_cast<int32_t>(std::lround(box.top)) + dot, dot, text);
    }
    return picture;
}

Picture LabelsPicture(const LabelRows& labels) {
    Picture picture = {labels.width(), labels.height(), 3, {}};
    picture.samples.reserve(3 * static_cast<size_t>(labels.width()) * static_cast<size_t>(labels.height()));
    for (int32_t y = 0; y < labels.height(); ++y)
        for (int32_t x = 0; x < labels.width(); ++x) {
            std::array<uint8_t, 3> colour = {0, 0, 0};
            if (const uint32_t label = labels.at(x, y)) {
                // Steps of the golden ratio spread any number of hues evenly.
                const double turns = 0.6180339887498949 * label;
                colour = BrightColour(turns - std::floor(turns), label % 3 == 0 ? 0.0 : label % 3 == 1 ? 0.25 : 0.5);
            }
            picture.samples.insert(picture.samples.end(), colour.begin(), colour.end());
        }
    return picture;
}

}  // namespace tool
