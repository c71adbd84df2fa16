#include "particle_trust.hpp"

#include <orlix/client.hpp>
#include <orlix/particles.hpp>
#include <orlix/statistics.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <span>
#include <unordered_map>
#include <vector>

namespace tool {

using namespace orlix;

namespace {

constexpr const char* kFigures[] = {"count", "area", "d50ByNumber", "d50ByArea"};

// What a particle becomes at another level, the worse the later.
enum class Fate { Same, Splits, Merges, Vanishes };
constexpr const char* kFates[] = {"same", "splits", "merges", "vanishes"};

constexpr double kPart = 0.1;  // of a particle's area; less does not make it split or merge

constexpr size_t kNoMatch = std::numeric_limits<size_t>::max();

// A set of particles: their numbers of pixels, and the figures of all.
struct Population {
    std::vector<int64_t> pixels;
    ComPtr<IImageVPA> labels;
    Json figures;
};

Population PopulationOf(const ParticlesAt& found, const TrustSettings& settings) {
    LONG count = 0;
    Check(found.blobs->get_Count(&count), found.blobs);
    std::vector<SBinaryMeasurements> shapes(static_cast<size_t>(count));
    if (count > 0) Check(found.blobs->GetBinaryMeasurements(BEMT_Size, 0, count, shapes.data()), found.blobs);
    Population out;
    Check(found.blobs->get_LabelImage(out.labels.Out()), found.blobs);
    std::vector<double> diameters, numbers, areas;
    int64_t pixels = 0;
    for (const SBinaryMeasurements& shape : shapes) {
        const double area = static_cast<double>(shape.m_lPixelCount) * settings.pixelArea,
                     weight = settings.weightOf(shape);
        out.pixels.push_back(shape.m_lPixelCount);
        pixels += shape.m_lPixelCount;
        diameters.push_back(2 * std::sqrt(area / std::numbers::pi));
        numbers.push_back(weight);
        areas.push_back(weight * area);
    }
    out.figures["lower"] = Finite(found.lower);
    out.figures["upper"] = Finite(found.upper);
    out.figures["count"] = count;
    out.figures["pixels"] = pixels;
    out.figures["area"] = static_cast<double>(pixels) * settings.pixelArea;
    out.figures["d50ByNumber"] = Finite(SizeAt(diameters, numbers, 0.5));
    out.figures["d50ByArea"] = Finite(SizeAt(diameters, areas, 0.5));
    return out;
}

// The particles of two levels that share the most pixels with each other.
struct Matches {
    std::vector<size_t> there;  // of each particle here, the one there; kNoMatch without a common pixel
    std::vector<size_t> here;   // the reverse
};

Matches MatchesOf(const Population& here, const Population& there) {
    std::unordered_map<uint64_t, int64_t> shared;  // by the labels of both
    const Rows<uint32_t> rows(here.labels, 0), others(there.labels, 0);
    for (LONG y = 0; y < std::min(rows.height(), others.height()); ++y) {
        const std::span<const uint32_t> row = rows[y], other = others[y];
        for (size_t x = 0; x < row.size();) {
            const size_t start = x;
            while (x < row.size() && row[x] == row[start] && other[x] == other[start]) ++x;
            if (row[start] != 0 && other[start] != 0)
                shared[uint64_t{row[start]} << 32 | other[start]] += static_cast<int64_t>(x - start);
        }
    }
    Matches out = {std::vector<size_t>(here.pixels.size(), kNoMatch),
                   std::vector<size_t>(there.pixels.size(), kNoMatch)};
    std::vector<int64_t> most(out.there.size(), 0), mostHere(out.here.size(), 0);
    for (const auto& [labels, pixels] : shared) {
        const auto i = static_cast<size_t>(labels >> 32) - 1, j = static_cast<size_t>(labels & 0xffffffff) - 1;
        // Of equal ones the first, whatever the order of the table.
        if (pixels > most[i] || (pixels == most[i] && j < out.there[i])) most[i] = pixels, out.there[i] = j;
        if (pixels > mostHere[j] || (pixels == mostHere[j] && i < out.here[j])) mostHere[j] = pixels, out.here[j] = i;
    }
    return out;
}

struct Change {
    Fate fate = Fate::Same;
    int64_t pixels = 0;  // of what it becomes; of a particle that merges, none of its own
};

std::vector<Change> ChangesOf(const Population& here, const Population& there) {
    const Matches matches = MatchesOf(here, there);
    const size_t count = here.pixels.size();
    const auto large = [&](int64_t part, size_t i) {
        return static_cast<double>(part) >= kPart * static_cast<double>(here.pixels[i]);
    };
    // The two largest parts of each particle, and the two largest particles of each one there.
    struct Two {
        int64_t first = 0, second = 0;
        void Add(int64_t pixels) {
            second = std::max(second, std::min(pixels, first));
            first = std::max(first, pixels);
        }
    };
    std::vector<Two> parts(count), sources(there.pixels.size());
    std::vector<Change> changes(count);
    for (size_t j = 0; j < there.pixels.size(); ++j)
        if (const size_t i = matches.here[j]; i != kNoMatch) {
            parts[i].Add(there.pixels[j]);
            changes[i].pixels += there.pixels[j];
        }
    for (size_t i = 0; i < count; ++i)
        if (matches.there[i] != kNoMatch) sources[matches.there[i]].Add(here.pixels[i]);
    for (size_t i = 0; i < count; ++i) {
        const size_t j = matches.there[i];
        if (j == kNoMatch) {
            changes[i] = {Fate::Vanishes, 0};
            continue;
        }
        // The largest of the others that go to the same place.
        const int64_t other = here.pixels[i] == sources[j].first ? sources[j].second : sources[j].first;
        if (matches.here[j] != i || (other > 0 && large(other, i)))
            changes[i].fate = Fate::Merges;
        else if (parts[i].second > 0 && large(parts[i].second, i))
            changes[i].fate = Fate::Splits;
    }
    return changes;
}

// Adds to `out` what becomes of the particles when the threshold moves by `shift` to either side.
void AddMove(const Population& base, double shift, const TrustSettings& settings, Json& particles, const char* member,
             Json& out) {
    out["shift"] = shift;
    std::array<std::vector<Change>, 2> changes;
    for (const bool wider : {false, true}) {
        const Population moved = PopulationOf(settings.movedBy(wider ? shift : -shift), settings);
        changes[wider] = ChangesOf(base, moved);
        out[wider ? "wider" : "narrower"] = moved.figures;
    }
    for (const char* figure : kFigures) {
        const double at = NumberAt(base.figures, figure);
        const double one = std::fabs(NumberAt(out["narrower"], figure) - at),
                     other = std::fabs(NumberAt(out["wider"], figure) - at);
        out["change"][figure] = at > 0 ? Finite(one > other || std::isnan(one) ? one / at : other / at) : Json(nullptr);
    }
    std::array<int64_t, std::size(kFates)> fates = {};
    for (size_t i = 0; i < base.pixels.size(); ++i) {
        const auto area = [&](const Change& change) {
            return change.fate == Fate::Merges ? Json(nullptr)
                                               : Json(static_cast<double>(change.pixels) * settings.pixelArea);
        };
        const Fate fate = std::max(changes[0][i].fate, changes[1][i].fate);
        ++fates[static_cast<size_t>(fate)];
        Json& of = particles[i]["trust"][member];
        of["narrowerArea"] = area(changes[0][i]);
        of["widerArea"] = area(changes[1][i]);
        of["fate"] = kFates[static_cast<size_t>(fate)];
    }
    for (size_t fate = 0; fate < std::size(kFates); ++fate) out["particles"][kFates[fate]] = fates[fate];
}

}  // namespace

Json TrustOf(const Json& histogram, const ParticlesAt& found, const TrustSettings& settings, Json& particles) {
    const double binWidth = NumberAt(histogram, "binWidth"), firstBin = NumberAt(histogram, "firstBin");
    const Population base = PopulationOf(found, settings);
    Json out;
    const double step = settings.integer ? std::max(1.0, binWidth) : binWidth;
    AddMove(base, step, settings, particles, "oneLevel", out["oneLevel"]);
    out["valley"] = nullptr;
    out["noValley"] = nullptr;
    for (Json& particle : particles) particle["trust"]["valley"] = nullptr;
    if (std::isnan(settings.level)) {
        out["noValley"] = "the phase lies between two levels";
        return out;
    }
    const auto counts = histogram["counts"].get<std::vector<LONG>>();
    const Valley bins = ValleyAt(counts, (settings.level - firstBin) / binWidth);
    if (std::isnan(bins.left)) {
        out["noValley"] = "the level lies in no valley between two peaks of the histogram";
        return out;
    }
    Json& valley = out["valley"];
    valley["left"] = firstBin + bins.left * binWidth;
    valley["right"] = firstBin + bins.right * binWidth;
    const double half = (bins.right - bins.left) / 2 * binWidth;
    AddMove(base, settings.integer ? std::max(step, std::floor(half + 0.5)) : half, settings, particles, "valley",
            valley);
    return out;
}

Json GreatestChanges(const Json& images) {
    Json out;
    for (const char* move : {"oneLevel", "valley"}) {
        Json& greatest = out[move];
        for (const Json& image : images)
            for (const char* figure : kFigures) {
                const double change = NumberAt(image, std::string("trust.") + move + ".change." + figure);
                if (!std::isnan(change) && !(change <= NumberAt(greatest, figure))) greatest[figure] = change;
            }
    }
    return out;
}

}  // namespace tool
