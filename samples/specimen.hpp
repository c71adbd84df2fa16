// Synthetic specimens: a polished surface under uneven light with dark (or bright) particles of known number and area,
// scratches, pits and noise, and the truth about it.
//
//   grey(x,y) = background(x,y) + particle or scratch or pit contrast, edges softened with the 3x3 binomial kernel, +
//   noise,
//               clamped to the type's range and rounded half up
//   background(x,y) = K0 + K1 y + K2 x + K3 y^2 + K4 x y + K5 x^2
//
// The same settings give the same pixels on every platform: integer random numbers, and of floating point only
// + - * / sqrt and floor. Grey levels in the settings are those of an 8-bit image; for 16 bits they are multiplied by
// 257.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace samples {

// The sequence of random numbers (SplitMix64: Steele, Lea and Flood 2014).
class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint64_t Next();
    double Uniform();                         // [0, 1), a multiple of 2^-53
    double Uniform(double low, double high);  // low + (high - low) Uniform()
    int32_t Below(int32_t bound);             // 0..bound-1; bound >= 1
    double Normal();                          // mean 0, deviation 1: twelve uniform numbers, so within [-6, 6]

private:
    uint64_t state_;
};

enum class Background { Flat, Tilted, Domed };

struct SpecimenSettings {
    uint64_t seed = 1;
    int32_t width = 640;
    int32_t height = 480;
    int32_t bits = 8;  // 8 or 16
    int32_t particles = 70;
    double minimumRadius = 4;  // pixels, of the circle that holds the particle
    double maximumRadius = 22;
    double gap = 4;                  // pixels at least between the circles of two particles; below 0 they may overlap
    double raggedShare = 0.4;        // of the particles; the others are round
    double matrixGrey = 182;         // mean of the background, about
    double particleContrast = -105;  // added to the background; negative: dark particles
    Background background = Background::Tilted;
    double backgroundSpan = 28;  // grey levels between the darkest and the brightest place of the background
    int32_t scratches = 6;
    double scratchContrast = -30;
    int32_t pits = 25;  // dark dots of 1 to 5 pixels, away from particles
    double pitContrast = -70;
    double noise = 4;  // standard deviation
};

struct Particle {
    double xCentroid = 0;  // of its pixels
    double yCentroid = 0;
    int32_t area = 0;  // pixels
    bool ragged = false;
};

struct Specimen {
    SpecimenSettings settings;
    double levelScale = 1;            // grey levels of this image per level of the settings: 1 or 257
    std::vector<uint16_t> pixels;     // row by row from the top, no padding; 8-bit images hold 0..255
    std::vector<int32_t> labels;      // same layout: 0 surface, 1..n particle number; -1 pit
    std::vector<Particle> particles;  // particle number 1 first
    int64_t particleArea = 0;         // sum of the areas
    int64_t pitArea = 0;
    std::array<double, 6> background = {};  // K0..K5 in levels of this image
};

// Every particle is one 4-connected set of pixels, where two overlap those that the earlier, larger one leaves; pits
// and the image's border keep at least 4 pixels from them. Throws std::invalid_argument for settings out of range
// (width and height 16..32768; bits 8 or 16; particles, scratches and pits 0..100000; radii 1 <= minimum <= maximum;
// gap at least 1 - minimum; finite levels, noise >= 0) and std::runtime_error when the particles do not fit.
Specimen MakeSpecimen(const SpecimenSettings& settings);

}  // namespace samples
