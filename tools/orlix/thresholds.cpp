#include "thresholds.hpp"

#include "console.hpp"
#include "region.hpp"

#include <orlix/client.hpp>

#include <cmath>

namespace tool {

using namespace orlix;

namespace {

enum Index { kMinimizeVariance, kTrim, kSearchForMinimum, kGaussianMixture, kMaximizeEntropy, kExponential };

// A half per cent of the counts is more than a few hot or dead pixels and less than any phase worth measuring.
constexpr ThresholdMethod kMethods[] = {
    {"minimize-variance", "otsu", "Otsu", {"minimumLeft", "minimumRight"}, {0.0, 0.0}},
    {"trim", "percentile", "Trim", {"trimLeft", "trimRight"}, {0.05, 0.05}},
    {"search-for-minimum", "minimum", "Minimum", {"trimLeft", "trimRight"}, {0.005, 0.005}},
    {"gaussian-mixture", "mixture", "Gaussian mixture", {"minimumLeft", "minimumRight"}, {0.005, 0.005}},
    {"maximize-entropy", "entropy", "Entropy", {"minimumLeft", "minimumRight"}, {0.005, 0.005}},
    {"exponential", "exp", "Exponential", {"trimRight", ""}, {0.05, 0.0}},
};

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

ThresholdResult FindThreshold(const ComPtr<IHistogram>& histogram, const ThresholdMethod& method,
                              const std::array<double, 2>& parameters) {
    ThresholdResult result;
    result.method = &method;
    result.parameters = parameters;
    const auto [first, second] = parameters;
    try {
        double step = 1, origin = 0, location = 0, right = 0;
        Check(histogram->GetBinToLocationMapping(&step, &origin), histogram);
        HRESULT found = S_OK;
        const auto index = &method - kMethods;
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
            default:
                found = Check(histogram->AutoThresholdExponential(first, &location), histogram);
        }
        result.locations = {location};
        result.darkCut = result.brightCut = index == kExponential ? location : location + step / 2;
        if (index == kTrim) {
            result.locations.push_back(right);
            result.darkCut = location - step / 2;
            result.brightCut = right + step / 2;
        }
        if (found == S_FALSE) result.note = "no threshold separates two classes";
        double last = 0;
        Check(histogram->get_Right(&last), histogram);
        if (index == kExponential && location > last) result.note = "above all grey levels";
    } catch (const Error& error) {
        result.message = error.what();
    }
    return result;
}

}  // namespace tool
