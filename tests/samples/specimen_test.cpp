#include "specimen.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <string>

using namespace samples;

namespace {

uint64_t Fnv1a(const std::vector<uint16_t>& pixels) {
    uint64_t hash = 0xcbf29ce484222325u;
    for (const uint16_t pixel : pixels)
        for (const int shift : {0, 8}) hash = (hash ^ (pixel >> shift & 0xffu)) * 0x100000001b3u;
    return hash;
}

// Area and centroid of the 8-connected sets of particle pixels, found without regard to the labels' values. The minimum
// label of the neighbourhood spreads until nothing changes.
std::vector<std::array<double, 3>> Components(const Specimen& specimen) {
    const int32_t width = specimen.settings.width, height = specimen.settings.height;
    const auto index = [&](int32_t x, int32_t y) { return static_cast<size_t>(y * width + x); };
    std::vector<int32_t> component(specimen.labels.size());
    for (size_t i = 0; i < component.size(); ++i)
        component[i] = specimen.labels[i] > 0 ? static_cast<int32_t>(i) + 1 : 0;
    for (bool changed = true; changed;) {
        changed = false;
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                int32_t& own = component[index(x, y)];
                if (own == 0) continue;
                for (int32_t v = std::max(y - 1, 0); v <= std::min(y + 1, height - 1); ++v)
                    for (int32_t u = std::max(x - 1, 0); u <= std::min(x + 1, width - 1); ++u) {
                        const int32_t other = component[index(u, v)];
                        if (other > 0 && other < own) {
                            own = other;
                            changed = true;
                        }
                    }
            }
    }
    std::map<int32_t, std::array<double, 3>> sums;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            if (const int32_t own = component[index(x, y)]) {
                auto& [n, sumX, sumY] = sums[own];
                n += 1;
                sumX += x;
                sumY += y;
            }
    std::vector<std::array<double, 3>> components;
    for (const auto& [own, sum] : sums) components.push_back({sum[0], sum[1] / sum[0], sum[2] / sum[0]});
    return components;
}

SpecimenSettings Clean() {
    SpecimenSettings settings;
    settings.background = Background::Flat;
    settings.scratches = settings.pits = 0;
    settings.noise = 0;
    return settings;
}

}  // namespace

TEST(Specimen, RandomNumbersAreThoseOfThePublishedGenerator) {
    Random random(1234567);
    // Reference output of SplitMix64 for this seed.
    for (const uint64_t want : {6457827717110365317u, 3203168211198807973u, 9817491932198370423u, 4593380528125082431u,
                                16408922859458223821u})
        EXPECT_EQ(want, random.Next());
}

TEST(Specimen, NormalNumbersHaveMeanZeroAndDeviationOne) {
    Random random(5);
    const int count = 200000;
    double sum = 0, squares = 0;
    for (int i = 0; i < count; ++i) {
        const double value = random.Normal();
        ASSERT_LE(std::fabs(value), 6.0);
        sum += value;
        squares += value * value;
    }
    EXPECT_NEAR(0.0, sum / count, 4 / std::sqrt(count));  // four standard errors
    EXPECT_NEAR(1.0, squares / count, 4 * std::sqrt(2.0 / count));
}

TEST(Specimen, TheSameSettingsGiveTheSamePixelsOnEveryPlatform) {
    SpecimenSettings tilted;
    EXPECT_EQ(12213907874536015656u, Fnv1a(MakeSpecimen(tilted).pixels));
    SpecimenSettings domed;
    domed.seed = 42;
    domed.bits = 16;
    domed.background = Background::Domed;
    EXPECT_EQ(8131011920724648768u, Fnv1a(MakeSpecimen(domed).pixels));
    EXPECT_EQ(MakeSpecimen(domed).pixels, MakeSpecimen(domed).pixels);
    domed.seed = 43;
    EXPECT_NE(MakeSpecimen(domed).pixels, MakeSpecimen(SpecimenSettings{.seed = 42, .bits = 16}).pixels);
}

TEST(Specimen, ParticlesAndPitsAgreeWithAnIndependentLabelling) {
    for (const double ragged : {0.0, 0.5, 1.0})
        for (const uint64_t seed : {1u, 2u, 3u}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", ragged share " + std::to_string(ragged));
            const Specimen specimen = MakeSpecimen({.seed = seed,
                                                    .width = 320,
                                                    .height = 200,
                                                    .particles = 30,
                                                    .minimumRadius = 1,
                                                    .maximumRadius = 12,
                                                    .raggedShare = ragged});
            ASSERT_EQ(30u, specimen.particles.size());
            std::vector<std::array<double, 3>> want;
            int64_t total = 0;
            for (const Particle& particle : specimen.particles) {
                want.push_back({static_cast<double>(particle.area), particle.xCentroid, particle.yCentroid});
                total += particle.area;
            }
            EXPECT_THAT(Components(specimen), testing::UnorderedElementsAreArray(want));
            EXPECT_EQ(total, specimen.particleArea);
            EXPECT_EQ(std::ranges::count(specimen.labels, -1), specimen.pitArea);
            EXPECT_GE(specimen.pitArea, specimen.settings.pits);
        }
}

TEST(Specimen, ParticlesThatOverlapShareNoPixels) {
    const Specimen specimen = MakeSpecimen(
        {.seed = 2, .width = 320, .height = 200, .particles = 60, .minimumRadius = 4, .maximumRadius = 14, .gap = -3});
    EXPECT_LT(Components(specimen).size(), 55u) << "some touch";
    for (size_t i = 0; i < specimen.particles.size(); ++i)
        EXPECT_EQ(std::ranges::count(specimen.labels, static_cast<int32_t>(i) + 1), specimen.particles[i].area);
}

TEST(Specimen, RoundParticlesHaveTheAreaOfTheirCircle) {
    SpecimenSettings settings = Clean();
    settings.particles = 10;
    settings.raggedShare = 0;
    settings.minimumRadius = settings.maximumRadius = 20;
    for (const Particle& particle : MakeSpecimen(settings).particles)
        EXPECT_NEAR(3.14159265 * 20 * 20, particle.area,
                    20);  // pixels; the discrepancy of a lattice circle stays below
}

TEST(Specimen, WithoutNoiseThePixelsAreBackgroundPlusContrast) {
    for (const int32_t bits : {8, 16})
        for (const Background background : {Background::Flat, Background::Tilted, Background::Domed}) {
            SpecimenSettings settings = Clean();
            settings.bits = bits;
            settings.background = background;
            const Specimen specimen = MakeSpecimen(settings);
            const auto& k = specimen.background;
            const int32_t width = settings.width;
            const auto label = [&](int32_t x, int32_t y) {
                return specimen.labels[static_cast<size_t>(y * width + x)];
            };
            double darkest = 1e9, brightest = -1e9;
            for (int32_t y = 1; y < settings.height - 1; ++y)
                for (int32_t x = 1; x < width - 1; ++x) {
                    const double z = k[0] + k[1] * y + k[2] * x + k[3] * y * y + k[4] * x * y + k[5] * x * x;
                    darkest = std::min(darkest, z);
                    brightest = std::max(brightest, z);
                    bool edge = false;  // softened: neither of the two levels
                    for (int32_t v = y - 1; v <= y + 1; ++v)
                        for (int32_t u = x - 1; u <= x + 1; ++u) edge = edge || label(u, v) != label(x, y);
                    const double contrast = label(x, y) > 0 ? settings.particleContrast * specimen.levelScale : 0;
                    if (edge) continue;
                    ASSERT_NEAR(z + contrast, specimen.pixels[static_cast<size_t>(y * width + x)], 0.5 + 1e-6);
                }
            const double span = background == Background::Flat ? 0 : settings.backgroundSpan * specimen.levelScale;
            EXPECT_NEAR(span, brightest - darkest, 0.02 * settings.backgroundSpan * specimen.levelScale);
        }
}

TEST(Specimen, SettingsThatCannotBeMetAreRefused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const SpecimenSettings& settings :
         {SpecimenSettings{.width = 15}, SpecimenSettings{.height = 40000}, SpecimenSettings{.bits = 12},
          SpecimenSettings{.particles = -1}, SpecimenSettings{.minimumRadius = 0}, SpecimenSettings{.maximumRadius = 2},
          SpecimenSettings{.maximumRadius = nan}, SpecimenSettings{.raggedShare = nan},
          SpecimenSettings{.matrixGrey = nan}, SpecimenSettings{.pits = -1}, SpecimenSettings{.noise = -1},
          SpecimenSettings{.noise = nan}, SpecimenSettings{.gap = nan}, SpecimenSettings{.gap = -3.5}})
        EXPECT_THROW(MakeSpecimen(settings), std::invalid_argument);
    EXPECT_THROW(MakeSpecimen({.width = 64, .height = 64, .particles = 200}), std::runtime_error);
    EXPECT_THROW(MakeSpecimen({.width = 32, .height = 32, .particles = 1, .minimumRadius = 16}), std::runtime_error);
}
