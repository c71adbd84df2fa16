#include "thresholds.hpp"

#include "console.hpp"
#include "region.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace tool {

using namespace orlix;

namespace {

enum Index : std::ptrdiff_t {
    kMinimizeVariance,
    kTrim,
    kSearchForMinimum,
    kGaussianMixture,
    kMaximizeEntropy,
    kExponential
};

// A half per cent of the counts is more than a few hot or dead pixels and less than any phase worth measuring.
constexpr ThresholdMethod kMethods[] = {
    {"minimize-variance", "otsu", "Otsu", {"minimumLeft", "minimumRight"}, {0.0, 0.0}, true, true},
    {"trim", "percentile", "Trim", {"trimLeft", "trimRight"}, {0.05, 0.05}, true, false},
    {"search-for-minimum", "minimum", "Minimum", {"trimLeft", "trimRight"}, {0.005, 0.005}, true, true},
    {"gaussian-mixture", "mixture", "Gaussian mixture", {"minimumLeft", "minimumRight"}, {0.005, 0.005}, true, true},
    {"maximize-entropy", "entropy", "Entropy", {"minimumLeft", "minimumRight"}, {0.005, 0.005}, true, false},
    // For the tail of a histogram that starts at black; of most images it lies above all levels.
    {"exponential", "exp", "Exponential", {"trimRight", ""}, {0.05, 0.0}, false, false},
};

// Counts up to each bin, itself included.
std::vector<int64_t> Cumulative(std::span<const LONG> counts) {
    std::vector<int64_t> sums(counts.begin(), counts.end());
    std::partial_sum(sums.begin(), sums.end(), sums.begin());
    return sums;
}

// Whether a threshold lies where its search ends and not where its method has found what it looks for. The minimum is
// sought in a window: when there is an emptier bin close by, the window ends there. The other methods leave a fraction
// on either side.
bool AtSearchLimit(std::span<const LONG> counts, size_t bin, Index index, double left, double right) {
    if (index == kSearchForMinimum) {
        const size_t close = counts.size() / 100 + 1;
        const auto around = counts.subspan(bin - std::min(bin, close));
        return std::ranges::min(around.first(std::min(around.size(), 2 * close + 1))) < counts[bin];
    }
    const std::vector<int64_t> below = Cumulative(counts);
    const int64_t total = below.back();
    const size_t last = counts.size() - 1;
    const auto first = [&](auto condition) {
        size_t i = 0;
        while (i < last && !condition(i)) ++i;
        return i;
    };
    size_t low = 0, high = last;
    if (index == kGaussianMixture) {  // the last bins at which the counts from either end do not exceed the fraction
        const auto limit = [&](double fraction) { return std::floor(static_cast<double>(total) * fraction + 0.5); };
        low = first([&](size_t i) { return static_cast<double>(below[i + 1]) > limit(left); });
        high =
            std::min(first([&](size_t i) { return static_cast<double>(total - below[i]) <= limit(right); }) + 1, last);
        // and no bin that leaves nothing on one side
        low = std::max(low, first([&](size_t i) { return below[i] > 0; }));
        high = std::min(high, first([&](size_t i) { return below[i + 1] == total; }));
        return low < high && (bin <= low || bin >= high);
    } else {
        const auto fraction = [&](int64_t pixels) { return static_cast<double>(pixels) / static_cast<double>(total); };
        low = first([&](size_t i) { return fraction(below[i]) >= left; });
        high = first([&](size_t i) { return 1 - fraction(below[i + 1]) < right; });
    }
    return (left > 0 && bin <= low) || (right > 0 && bin >= high);
}

}  // namespace

std::span<const ThresholdMethod> ThresholdMethods() { return kMethods; }

ThresholdChoice ParseThreshold(std::string_view text) {
    ThresholdChoice choice;
    choice.text = text;
    const size_t colon = std::min(text.find(':'), text.size());
    for (const ThresholdMethod& method : kMethods) {
        if (text.substr(0, colon) != method.id && text.substr(0, colon) != method.alias) continue;
        choice.method = &method;
        choice.parameters = method.defaults;
        if (colon == text.size()) return choice;
        const auto numbers = ParseNumbers(text.substr(colon + 1), text);
        const size_t most = *method.parameters[1] ? 2 : 1;
        if (numbers.size() > most) throw UsageError("'" + choice.text + "' has too many parameters");
        std::copy(numbers.begin(), numbers.end(), choice.parameters.begin());
        return choice;
    }
    if (text.find(',') == std::string_view::npos) {
        std::string known;
        for (const ThresholdMethod& method : kMethods) known += std::string(", ") + method.id;
        throw UsageError("'" + choice.text + "' is not a threshold: LO,HI" + known);
    }
    const auto levels = ParseNumbers(text, text, true);
    if (levels.size() != 2 || (std::isnan(levels[0]) && std::isnan(levels[1])))
        throw UsageError("levels are given as LO,HI or LO, or ,HI");
    if (levels[0] > levels[1]) throw UsageError("'" + choice.text + "': the lower level is above the upper one");
    choice.levels = {levels[0], levels[1]};
    return choice;
}

ThresholdResult FindThreshold(const ComPtr<IHistogram>& histogram, bool integer, double largest,
                              const ThresholdMethod& method, const std::array<double, 2>& parameters) {
    ThresholdResult result;
    result.method = &method;
    result.parameters = parameters;
    const auto [first, second] = parameters;
    const auto index = static_cast<Index>(&method - kMethods);
    double step = 1, origin = 0, location = 0, right = 0;
    HRESULT found = S_OK;
    LONG size = 0;
    LONG* bins = nullptr;
    try {
        Check(histogram->GetBinToLocationMapping(&step, &origin), histogram);
        Check(histogram->get_NumberOfBins(&size), histogram);
        Check(histogram->get_Bins(&bins), histogram);
        switch (index) {
            case kMinimizeVariance:
                found = Check(histogram->AutoThresholdMinimizeVariance(first, second, &location), histogram);
                break;
            case kTrim:
                found = Check(histogram->AutoThresholdTrim(first, &location, second, &right), histogram);
                break;
            case kSearchForMinimum:
                found = Check(histogram->AutoThresholdSearchForMinimum(first, second, &location), histogram);
                break;
            case kGaussianMixture:
                found = Check(histogram->AutoThresholdGaussianMixture(first, second, &location), histogram);
                break;
            case kMaximizeEntropy:
                found = Check(histogram->AutoThresholdMaximizeEntropy(first, second, &location), histogram);
                break;
            case kExponential:
                found = Check(histogram->AutoThresholdExponential(first, &location), histogram);
        }
    } catch (const Error& error) {
        result.error = error.what();
        return result;
    }

    const std::span<const LONG> counts(bins, static_cast<size_t>(size));
    if (std::count_if(counts.begin(), counts.end(), [](LONG count) { return count > 0; }) < 2) {
        result.none = "all pixels have one grey level";
        return result;
    }
    if (found == S_FALSE) {
        result.none = "no threshold separates two classes";
        return result;
    }
    result.darkCut = result.brightCut = index == kExponential ? location : location + step / 2;
    if (index == kTrim) {
        result.darkCut = location - step / 2;
        result.brightCut = right + step / 2;
    }
    const auto last = [&](double cut) { return integer ? std::floor(cut) : cut; };
    if (index == kTrim)
        result.levels = {integer ? std::floor(result.darkCut) + 1 : result.darkCut, last(result.brightCut)};
    else
        result.levels = {last(result.darkCut)};

    if (index == kExponential) {
        if (location >= largest) {
            result.note = "above all grey levels";
            result.noteCode = "above-all-levels";
        }
    } else if (index != kTrim) {
        const auto bin =
            static_cast<size_t>(std::clamp<double>(std::floor((location - origin) / step + 0.5), 0, size - 1.0));
        // The library answers with the first bin when no threshold leaves the fractions that were asked for.
        const std::vector<int64_t> below = Cumulative(counts);
        const double dark = static_cast<double>(below[0]) / static_cast<double>(below.back());
        if (index != kSearchForMinimum && bin == 0 && (dark <= 0 || dark < first || 1 - dark < second)) {
            result.none = "no threshold leaves these fractions on both sides";
        } else if (AtSearchLimit(counts, bin, index, first, second)) {
            result.note = "at the limit of its search";
            result.noteCode = "at-search-limit";
        }
    }
    return result;
}

}  // namespace tool
