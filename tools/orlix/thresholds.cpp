#include "thresholds.hpp"

#include "console.hpp"
#include "region.hpp"

#include <algorithm>
#include <cmath>

namespace tool {

using namespace orlix;

namespace {

using Method = ThresholdMethod;
constexpr std::array kSmallest = {"minimumLeft", "minimumRight"}, kTrimmed = {"trimLeft", "trimRight"};
constexpr NamedThreshold kMethods[] = {
    {Method::MinimizeVariance, "minimize-variance", "otsu", "Otsu", kSmallest, true, true},
    {Method::Trim, "trim", "percentile", "Trim", kTrimmed, true, false},
    {Method::SearchForMinimum, "search-for-minimum", "minimum", "Minimum", kTrimmed, true, true},
    {Method::GaussianMixture, "gaussian-mixture", "mixture", "Gaussian mixture", kSmallest, true, true},
    {Method::MaximizeEntropy, "maximize-entropy", "entropy", "Entropy", kSmallest, true, false},
    // For histograms that start at black and have a tail; in most images it lies above all levels.
    {Method::Exponential, "exponential", "exp", "Exponential", {"trimRight", ""}, false, false},
};

}  // namespace

std::span<const NamedThreshold> ThresholdMethods() { return kMethods; }

ThresholdChoice ParseThreshold(std::string_view text) {
    ThresholdChoice choice;
    choice.text = text;
    const size_t colon = std::min(text.find(':'), text.size());
    for (const NamedThreshold& method : kMethods) {
        if (text.substr(0, colon) != method.id && text.substr(0, colon) != method.alias) continue;
        choice.method = &method;
        choice.parameters = UsualParameters(method.method);
        if (colon == text.size()) return choice;
        const auto numbers = ParseNumbers(text.substr(colon + 1), text);
        const size_t most = *method.parameters[1] ? 2 : 1;
        if (numbers.size() > most) throw UsageError("'" + choice.text + "' has too many parameters");
        std::copy(numbers.begin(), numbers.end(), choice.parameters.begin());
        return choice;
    }
    if (text.find(',') == std::string_view::npos) {
        std::string known;
        for (const NamedThreshold& method : kMethods) known += std::string(", ") + method.id;
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
                              const NamedThreshold& method, const std::array<double, 2>& parameters) {
    using Status = AutoThreshold::Status;
    ThresholdResult result;
    result.method = &method;
    result.parameters = parameters;
    AutoThreshold found;
    try {
        found = FindAutoThreshold(histogram, method.method, parameters[0], parameters[1]);
    } catch (const Error& error) {
        result.error = error.what();
        return result;
    }
    result.none = found.status == Status::OneLevel           ? "all pixels have one grey level"
                  : found.status == Status::NotSeparable     ? "no threshold separates two classes"
                  : found.status == Status::FractionsNotLeft ? "no threshold leaves these fractions on both sides"
                                                             : "";
    if (found.status == Status::OneLevel || found.status == Status::NotSeparable) return result;
    result.darkCut = found.darkCut;
    result.brightCut = found.brightCut;
    const auto last = [&](double cut) { return integer ? std::floor(cut) : cut; };
    if (method.method == Method::Trim)
        result.levels = {integer ? std::floor(result.darkCut) + 1 : result.darkCut, last(result.brightCut)};
    else
        result.levels = {last(result.darkCut)};
    if (method.method == Method::Exponential && found.darkCut >= largest) {
        result.note = "above all grey levels";
        result.noteCode = "above-all-levels";
    } else if (found.atSearchLimit) {
        result.note = "at the limit of its search";
        result.noteCode = "at-search-limit";
    }
    return result;
}

}  // namespace tool
