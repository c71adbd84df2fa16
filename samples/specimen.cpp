#include "specimen.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

namespace samples {

uint64_t Random::Next() {
    state_ += 0x9e3779b97f4a7c15u;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

double Random::Uniform() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

double Random::Uniform(double low, double high) { return low + (high - low) * Uniform(); }

int32_t Random::Below(int32_t bound) {
    // The upper 32 bits scaled: uneven by less than bound / 2^32, and never a loop.
    return static_cast<int32_t>(((Next() >> 32) * static_cast<uint64_t>(bound)) >> 32);
}

double Random::Normal() {
    int32_t sum = 0;
    for (int draw = 0; draw < 3; ++draw) {
        const uint64_t bits = Next();
        for (int shift = 0; shift < 64; shift += 16) sum += static_cast<int32_t>(bits >> shift & 0xffff);
    }
    return (static_cast<double>(sum) - 12 * 32767.5) / 65536;  // each number has a variance of 65536^2 / 12
}

namespace {

constexpr int kGap = 4;  // pixels to pits and to the border; edge softening reaches 1
constexpr int32_t kPit = -1;

void Validate(const SpecimenSettings& s) {
    const auto require = [](bool condition, const char* text) {
        if (!condition) throw std::invalid_argument(text);
    };
    const auto level = [](double value) { return value >= -1e6 && value <= 1e6; };
    require(s.width >= 16 && s.width <= 32768 && s.height >= 16 && s.height <= 32768,
            "width and height must lie between 16 and 32768");
    require(s.bits == 8 || s.bits == 16, "bits must be 8 or 16");
    require(s.particles >= 0 && s.particles <= 100000, "the number of particles must lie between 0 and 100000");
    require(s.scratches >= 0 && s.scratches <= 100000, "the number of scratches must lie between 0 and 100000");
    require(s.pits >= 0 && s.pits <= 100000, "the number of pits must lie between 0 and 100000");
    require(s.minimumRadius >= 1 && s.maximumRadius >= s.minimumRadius && s.maximumRadius <= 16384,
            "radii must be at least 1, the minimum not above the maximum");
    // The centre of a particle is its own then.
    require(s.gap >= 1 - s.minimumRadius && s.gap <= 16384,
            "the gap between particles must be at least 1 minus the smallest radius");
    require(s.raggedShare >= 0 && s.raggedShare <= 1, "the share of ragged particles must lie between 0 and 1");
    require(level(s.matrixGrey) && level(s.particleContrast) && level(s.backgroundSpan) && level(s.scratchContrast) &&
                level(s.pitContrast),
            "a grey level is out of range");
    require(s.noise >= 0 && s.noise <= 1e6, "the noise must not be negative");
}

struct Disk {
    double x, y, radius;
};

// Centres known so far, in square cells as wide as the largest distance that matters, so that a question looks at 9
// cells.
class Neighbours {
public:
    Neighbours(int32_t width, int32_t height, double reach)
        : cell_(std::max(reach, 1.0)),
          columns_(static_cast<int32_t>(width / cell_) + 1),
          rows_(static_cast<int32_t>(height / cell_) + 1),
          cells_(static_cast<size_t>(columns_) * static_cast<size_t>(rows_)) {}

    void Add(const Disk& disk) { cells_[Index(Column(disk.x), Row(disk.y))].push_back(disk); }

    bool Free(double x, double y, double radius, double gap) const {
        for (int32_t row = std::max(Row(y) - 1, 0); row <= std::min(Row(y) + 1, rows_ - 1); ++row)
            for (int32_t column = std::max(Column(x) - 1, 0); column <= std::min(Column(x) + 1, columns_ - 1); ++column)
                for (const Disk& other : cells_[Index(column, row)]) {
                    const double reach = radius + other.radius + gap;
                    if ((x - other.x) * (x - other.x) + (y - other.y) * (y - other.y) < reach * reach) return false;
                }
        return true;
    }

private:
    int32_t Column(double x) const { return static_cast<int32_t>(x / cell_); }
    int32_t Row(double y) const { return static_cast<int32_t>(y / cell_); }
    size_t Index(int32_t column, int32_t row) const {
        return static_cast<size_t>(row) * static_cast<size_t>(columns_) + static_cast<size_t>(column);
    }
    double cell_;
    int32_t columns_, rows_;
    std::vector<std::vector<Disk>> cells_;
};

// The outline of a ragged particle: its radius, as a share of the full one, at 32 directions and in between.
class RaggedOutline {
public:
    explicit RaggedOutline(Random& random) {
        for (size_t i = 0; i < coarse_.size(); ++i) coarse_[i] = random.Uniform(0.5, 0.85);
        for (size_t i = 0; i < fine_.size(); ++i) fine_[i] = random.Uniform(0.0, 0.15);
    }
    double Share(double dx, double dy) const {
        const double turn = Turn(dx, dy);
        return At(coarse_, turn) + At(fine_, turn);
    }

private:
    // 0..4 around the circle: grows with the angle, by arithmetic alone.
    static double Turn(double dx, double dy) {
        const double sum = std::fabs(dx) + std::fabs(dy);
        if (sum == 0) return 0;
        const double t = dy / sum;
        if (dx < 0) return 2 - t;
        return dy < 0 ? 4 + t : t;
    }
    template <size_t N>
    static double At(const std::array<double, N>& knots, double turn) {
        const double position = turn * (static_cast<double>(N) / 4);
        const size_t i = std::min(static_cast<size_t>(position), N - 1);
        const double weight = position - static_cast<double>(i);
        return knots[i] * (1 - weight) + knots[(i + 1) % N] * weight;
    }
    std::array<double, 8> coarse_;
    std::array<double, 32> fine_;
};

class Maker {
public:
    explicit Maker(const SpecimenSettings& settings) : random_(settings.seed) {
        specimen_.settings = settings;
        specimen_.levelScale = settings.bits == 8 ? 1 : 257;
        const size_t size = static_cast<size_t>(settings.width) * static_cast<size_t>(settings.height);
        specimen_.labels.assign(size, 0);
        contrast_.assign(size, 0.0f);
    }

    Specimen Make() {
        MakeBackground();
        MakeScratches();
        MakeParticlesAndPits();
        SoftenEdges();
        MakePixels();
        return std::move(specimen_);
    }

private:
    const SpecimenSettings& Settings() const { return specimen_.settings; }
    size_t Index(int32_t x, int32_t y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(Settings().width) + static_cast<size_t>(x);
    }

    void MakeBackground() {
        const SpecimenSettings& s = Settings();
        auto& k = specimen_.background;
        const double w = s.width - 1, h = s.height - 1;
        const double span = s.backgroundSpan;
        if (s.background == Background::Flat) {
            k[0] = s.matrixGrey;
        } else if (s.background == Background::Tilted) {
            // Along a direction that the seed picks; opposite corners then differ by the span.
            const double share = random_.Uniform(0.2, 0.8);
            const double xRise = (random_.Below(2) ? span : -span) * share;
            const double yRise = (random_.Below(2) ? span : -span) * (1 - share);
            k[1] = yRise / h;
            k[2] = xRise / w;
            k[0] = s.matrixGrey - 0.5 * (xRise + yRise);
        } else {
            // Brightest near the middle; the farthest corner is darker by the span.
            const double xTop = w * random_.Uniform(0.4, 0.6), yTop = h * random_.Uniform(0.4, 0.6);
            const double xFar = std::max(xTop, w - xTop), yFar = std::max(yTop, h - yTop);
            const double a = -span / (xFar * xFar + yFar * yFar);
            k[5] = a;
            k[3] = a;
            k[2] = -2 * a * xTop;
            k[1] = -2 * a * yTop;
            k[0] = s.matrixGrey + span / 3 + a * (xTop * xTop + yTop * yTop);
        }
        for (double& value : k) value *= specimen_.levelScale;
    }

    // Straight, one pixel wide, each of its own depth; they end at the border or on the surface, and particles cover
    // them.
    void MakeScratches() {
        const SpecimenSettings& s = Settings();
        for (int32_t i = 0; i < s.scratches; ++i) {
            const double x0 = random_.Uniform(0, s.width), y0 = random_.Uniform(0, s.height);
            const double dx = random_.Uniform(-1, 1), dy = random_.Uniform(-1, 1);
            const double norm = std::sqrt(dx * dx + dy * dy);
            const double length = random_.Uniform(0.3, 1.2) * s.width;
            const double strength = s.scratchContrast * random_.Uniform(0.5, 1);
            if (norm < 0.01) continue;
            for (double at = 0; at < length; at += 1) {
                const double x = std::floor(x0 + dx / norm * at + 0.5), y = std::floor(y0 + dy / norm * at + 0.5);
                if (x < 0 || y < 0 || x >= s.width || y >= s.height) break;
                contrast_[Index(static_cast<int32_t>(x), static_cast<int32_t>(y))] = static_cast<float>(strength);
            }
        }
    }

    void MakeParticlesAndPits() {
        const SpecimenSettings& s = Settings();
        std::vector<double> radii(static_cast<size_t>(s.particles));
        for (double& radius : radii) {
            const double u = random_.Uniform();  // squared: many small particles, few large ones
            radius = s.minimumRadius + (s.maximumRadius - s.minimumRadius) * u * u;
        }
        std::sort(radii.begin(), radii.end(), std::greater<>());  // large ones first: they fit least easily

        Neighbours taken(s.width, s.height, 2 * s.maximumRadius + std::max<double>(s.gap, kGap) + 2);
        for (const double radius : radii) {
            const Disk disk = Place(taken, radius, s.gap);
            taken.Add(disk);
            DrawParticle(disk, random_.Uniform() < s.raggedShare);
        }
        for (int32_t i = 0; i < s.pits; ++i) {
            const double radius = random_.Uniform(0.5, 1.3);
            const Disk disk = Place(taken, radius, kGap);
            taken.Add(disk);
            DrawPit(disk);
        }
    }

    Disk Place(const Neighbours& taken, double radius, double gap) {
        const SpecimenSettings& s = Settings();
        const double margin = radius + kGap;
        for (int attempt = 0; attempt < 20000 && 2 * margin < s.width - 1 && 2 * margin < s.height - 1; ++attempt) {
            const double x = random_.Uniform(margin, s.width - 1 - margin);
            const double y = random_.Uniform(margin, s.height - 1 - margin);
            if (taken.Free(x, y, radius, gap)) return {x, y, radius};
        }
        throw std::runtime_error("the particles do not fit: fewer or smaller ones, or a larger image");
    }

    void DrawParticle(const Disk& disk, bool ragged) {
        const RaggedOutline outline(random_);
        const auto inside = [&](int32_t x, int32_t y) {
            const double dx = x - disk.x, dy = y - disk.y;
            const double reach = ragged ? disk.radius * outline.Share(dx, dy) : disk.radius;
            return dx * dx + dy * dy <= reach * reach;
        };
        // Grown from the centre, so that thin spikes of the outline cannot leave loose pixels behind.
        const int32_t number = static_cast<int32_t>(specimen_.particles.size()) + 1;
        const int32_t xMiddle = static_cast<int32_t>(std::floor(disk.x + 0.5));
        const int32_t yMiddle = static_cast<int32_t>(std::floor(disk.y + 0.5));
        Particle particle;
        particle.ragged = ragged;
        int64_t xSum = 0, ySum = 0;
        std::vector<std::array<int32_t, 2>> open = {{xMiddle, yMiddle}};
        specimen_.labels[Index(xMiddle, yMiddle)] = number;
        while (!open.empty()) {
            const auto [x, y] = open.back();
            open.pop_back();
            ++particle.area;
            xSum += x;
            ySum += y;
            contrast_[Index(x, y)] = static_cast<float>(Settings().particleContrast);
            for (const auto& [dx, dy] : {std::array{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                int32_t& label = specimen_.labels[Index(x + dx, y + dy)];
                if (label != 0 || !inside(x + dx, y + dy)) continue;
                label = number;
                open.push_back({x + dx, y + dy});
            }
        }
        particle.xCentroid = static_cast<double>(xSum) / particle.area;
        particle.yCentroid = static_cast<double>(ySum) / particle.area;
        specimen_.particleArea += particle.area;
        specimen_.particles.push_back(particle);
    }

    void DrawPit(const Disk& disk) {
        const int32_t xMiddle = static_cast<int32_t>(std::floor(disk.x + 0.5));
        const int32_t yMiddle = static_cast<int32_t>(std::floor(disk.y + 0.5));
        for (int32_t y = yMiddle - 2; y <= yMiddle + 2; ++y)
            for (int32_t x = xMiddle - 2; x <= xMiddle + 2; ++x) {
                const double dx = x - disk.x, dy = y - disk.y;
                if ((x != xMiddle || y != yMiddle) && dx * dx + dy * dy > disk.radius * disk.radius) continue;
                specimen_.labels[Index(x, y)] = kPit;
                contrast_[Index(x, y)] = static_cast<float>(Settings().pitContrast);
                ++specimen_.pitArea;
            }
    }

    // Weights 1 2 1 along rows, then along columns; the border repeats. Symmetric, so a straight edge stays where it
    // is.
    void SoftenEdges() {
        const SpecimenSettings& s = Settings();
        std::vector<float> line;
        const auto soften = [&](size_t start, size_t step, int32_t count) {
            line.resize(static_cast<size_t>(count));
            for (size_t i = 0; i < line.size(); ++i) line[i] = contrast_[start + i * step];
            for (size_t i = 0; i < line.size(); ++i) {
                const float before = line[i > 0 ? i - 1 : 0], after = line[std::min(i + 1, line.size() - 1)];
                contrast_[start + i * step] = (before + 2 * line[i] + after) * 0.25f;
            }
        };
        for (int32_t y = 0; y < s.height; ++y) soften(Index(0, y), 1, s.width);
        for (int32_t x = 0; x < s.width; ++x) soften(Index(x, 0), static_cast<size_t>(s.width), s.height);
    }

    void MakePixels() {
        const SpecimenSettings& s = Settings();
        const auto& k = specimen_.background;
        const double scale = specimen_.levelScale, white = 255 * scale;
        specimen_.pixels.resize(contrast_.size());
        for (int32_t y = 0; y < s.height; ++y)
            for (int32_t x = 0; x < s.width; ++x) {
                const double light = k[0] + k[1] * y + k[2] * x + k[3] * y * y + k[4] * x * y + k[5] * x * x;
                const double grey =
                    light + scale * static_cast<double>(contrast_[Index(x, y)]) + scale * s.noise * random_.Normal();
                specimen_.pixels[Index(x, y)] = static_cast<uint16_t>(std::floor(std::clamp(grey, 0.0, white) + 0.5));
            }
    }

    Random random_;
    Specimen specimen_;
    std::vector<float> contrast_;  // to be added to the background, in levels of the settings
};

}  // namespace

Specimen MakeSpecimen(const SpecimenSettings& settings) {
    Validate(settings);
    return Maker(settings).Make();
}

}  // namespace samples
