#include "measurement.hpp"

#include "console.hpp"
#include "units.hpp"
#include "warnings.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace tool {

using namespace orlix;

namespace {

constexpr LONG kFineBins = 65536;  // a bin for every value of a 16-bit image

template <class Method>
double Property(const ComPtr<IHistogram>& histogram, Method method) {
    double value = 0;
    Check((histogram.get()->*method)(&value), histogram);
    return value;
}

void Smooth(const ComPtr<IHistogram>& histogram, LONG weights) {
    if (weights == 3) Check(histogram->Smooth3(), histogram);
    if (weights == 5) Check(histogram->Smooth5(), histogram);
    if (weights == 7) Check(histogram->Smooth7(), histogram);
    if (weights == 9) Check(histogram->Smooth9(), histogram);
}

// The phase from `lower` to `upper`, with its ends moved outwards. `above`: `lower` is a cut, which is below the phase.
MovedPhase MovePhase(const ComPtr<IImageProcess>& process, LONG type, double lower, double upper, bool above,
                     double shift) {
    const double least = TypeMinimum(type), most = TypeMaximum(type);
    MovedPhase moved = {nullptr, lower > least ? std::max(lower - shift, least) : lower,
                        upper < most ? std::min(upper + shift, most) : upper};
    if (above) {
        moved.phase = SideOf(process, type, moved.lower, true);
    } else {
        const bool some = moved.lower <= moved.upper && moved.lower <= most && moved.upper >= least;
        Check(process->Threshold(some ? moved.lower : least, some ? moved.upper : most, some, moved.phase.Out()),
              process);
    }
    return moved;
}

class Measuring {
public:
    Measuring(ComPtr<IImageVPAExPlus> image, const std::string& shownName, const MeasureSettings& settings)
        : settings_(settings),
          result_{nullptr, nullptr, 0, nullptr, nullptr, {{"file", shownName}}},
          subject_(std::move(image), settings, result_.document),
          process_(Cast<IImageProcess>(subject_.image)),
          type_(subject_.type) {
        result_.image = subject_.image;
        result_.region = subject_.region;
        result_.band = subject_.band;
    }

    Measurement Run() {
        Background();
        Grey();
        Luminance();
        Histograms();
        Thresholds();
        Phase();
        return std::move(result_);
    }

private:
    void Warn(std::string_view code, const std::string& message) { tool::Warn(result_.document, code, message); }

    void Background() {
        Json& out = result_.document["flatten"];
        if (!settings_.flatten) return;
        Flattening flat = Flatten(subject_, *settings_.flatten);
        out = std::move(flat.document);
        for (const auto& [code, message] : flat.warnings) Warn(code, message);
    }

    // Figures of all pixels of the region.
    void Grey() {
        Check(process_->get_GrayMeasurements(
                  static_cast<GrayExtractMeasurementType>(GEMT_GrayLocation | GEMT_GrayStatistics), &grey_),
              process_);
        if (type_ != DT_BYTE) {
            Check(process_->SnapLuminanceRange(0, 0, 0), process_);
            Check(process_->put_NumberOfBins(kFineBins), process_);
        }
        Check(process_->get_Histogram(fine_.Out()), process_);
        largest_ = Property(fine_, &IHistogram::get_Maximum);
        Json& out = result_.document["grey"];
        out["count"] = grey_.m_lPixelCount;
        out["mean"] = Finite(grey_.m_dGrayAverage);
        out["standardDeviation"] = Finite(grey_.m_dGrayStandardDeviation);
        out["minimum"] = Finite(Property(fine_, &IHistogram::get_Minimum));
        out["maximum"] = Finite(largest_);
        out["median"] = Finite(Property(fine_, &IHistogram::get_Median));
        out["mode"] = Finite(Property(fine_, &IHistogram::get_Mode));
        out["skew"] = Finite(Property(fine_, &IHistogram::get_Skew));
        out["excessKurtosis"] = Finite(Property(fine_, &IHistogram::get_Kurtosis));
        out["entropy"] = Finite(Property(fine_, &IHistogram::get_Entropy));
        out["xCentroid"] = Finite(grey_.m_dGrayXCentroid);
        out["yCentroid"] = Finite(grey_.m_dGrayYCentroid);
    }

    void Luminance() {
        if (settings_.luminance) {
            PutLuminance(subject_, (*settings_.luminance)[0], (*settings_.luminance)[1]);
            Check(process_->get_Histogram(fine_.Out()), process_);
        }
        double lower = 0, upper = 0;
        Check(process_->GetLuminanceRange(&lower, &upper), process_);
        Json& out = result_.document["luminance"];
        out["lower"] = Finite(lower);
        out["upper"] = Finite(upper);
        out["source"] = settings_.luminance ? "given" : type_ == DT_BYTE ? "type" : "data";
        for (const LONG count : Bins(fine_)) inside_ += count;
        if (inside_ < 1) throw std::runtime_error("no pixel lies in the luminance range");
    }

    void Histograms() {
        histogram_ = Regrouped(fine_, settings_.bins);
        Json counts = Json::array();
        for (const LONG count : Bins(histogram_)) counts.push_back(count);
        double step = 1, origin = 0;
        Check(histogram_->GetBinToLocationMapping(&step, &origin), histogram_);
        Smooth(histogram_, settings_.smoothing);
        Json& out = result_.document["histogram"];
        out["bins"] = counts.size();
        out["left"] = Property(histogram_, &IHistogram::get_Left);
        out["right"] = Property(histogram_, &IHistogram::get_Right);
        out["firstBin"] = origin;
        out["binWidth"] = step;
        out["smoothing"] = settings_.smoothing;
        out["pixelsOutside"] = grey_.m_lPixelCount - inside_;
        out["dip"] = dip_ = Dip(Bins(fine_));
        out["leastDipOfTwoPeaks"] = LeastDipOfTwoPeaks(inside_);
        out["counts"] = std::move(counts);
    }

    ComPtr<IBitmap> Side(double cut, bool bright) const { return SideOf(process_, type_, cut, bright); }

    double Fraction(int64_t pixels) const {
        return static_cast<double>(pixels) / static_cast<double>(grey_.m_lPixelCount);
    }

    void Thresholds() {
        Json& list = result_.document["thresholds"] = Json::array();
        for (const NamedThreshold& method : ThresholdMethods()) {
            const bool chosen = settings_.threshold.method == &method;
            if (!chosen && !method.always) continue;
            const ThresholdResult found =
                FindThreshold(histogram_, type_ != DT_Float, largest_, method,
                              chosen ? settings_.threshold.parameters : UsualParameters(method.method));
            if (chosen) chosen_ = found;
            Json entry;
            entry["method"] = method.id;
            entry["label"] = method.label;
            entry["chosen"] = chosen;
            for (size_t i = 0; i < 2; ++i)
                if (*method.parameters[i]) entry["parameters"][method.parameters[i]] = found.parameters[i];
            if (found.levels.empty()) {
                entry["message"] = found.error.empty() ? found.none : found.error;
            } else {
                if (found.levels.size() == 2) {
                    entry["left"] = Finite(found.levels[0]);
                    entry["right"] = Finite(found.levels[1]);
                } else {
                    entry["threshold"] = Finite(found.levels[0]);
                }
                entry["darkFraction"] = Fraction(MeasureBitmap(Side(found.darkCut, false)).pixelCount);
                entry["brightFraction"] = Fraction(MeasureBitmap(Side(found.brightCut, true)).pixelCount);
                if (!found.note.empty()) entry["note"] = found.note;
            }
            list.push_back(std::move(entry));
        }
    }

    // Warns where the chosen threshold is doubtful.
    void Doubts() {
        if (!chosen_.none.empty()) {
            Warn("no-threshold", chosen_.none + ": there is no phase");
            return;
        }
        if (!chosen_.note.empty())
            Warn(chosen_.noteCode, "the threshold " + Number(chosen_.levels[0]) + " is " + chosen_.note);
        if (!chosen_.method->twoPeaked) return;
        const double least = LeastDipOfTwoPeaks(inside_);
        if (dip_ < least) {
            Warn("one-peak", "the histogram has one peak only (dip " + Digits(dip_, 2) + ", two have " +
                                 Digits(least, 2) + " or more): check the threshold by eye");
            return;
        }
        if (!chosen_.note.empty()) return;
        // Does a side have two peaks itself? Its dip is expressed as a fraction of all pixels.
        const std::span<LONG> bins = Bins(fine_);
        double cut = 0;
        Check(fine_->LocationToBin(chosen_.darkCut, &cut), fine_);
        const auto dark = static_cast<size_t>(std::clamp(std::floor(cut) + 1, 0.0, static_cast<double>(bins.size())));
        const auto dipOf = [&](std::span<const LONG> side) {
            const int64_t pixels = std::accumulate(side.begin(), side.end(), int64_t{0});
            return Dip(side) * static_cast<double>(pixels) / static_cast<double>(inside_);
        };
        constexpr double kThirdPeak = 0.01;
        for (const auto& [name, side] : {std::pair{"dark", bins.first(dark)}, {"bright", bins.subspan(dark)}})
            if (const double dip = dipOf(side); dip >= std::max(kThirdPeak, least))
                Warn("more-than-two-peaks", std::string("the ") + name +
                                                " side of the threshold has two peaks itself (dip " + Digits(dip, 2) +
                                                "): more than two phases, of which one threshold makes two");
    }

    void Phase() {
        const ThresholdChoice& choice = settings_.threshold;
        const bool integer = type_ != DT_Float;
        double lower = TypeMinimum(type_), upper = TypeMaximum(type_);
        Json out;
        out["polarity"] = !choice.method ? "between" : settings_.bright ? "bright" : "dark";
        out["method"] = choice.method ? choice.method->id : "levels";
        for (const char* member :
             {"lower", "upper", "pixels", "areaFraction", "areaSquareMicrons", "xCentroid", "yCentroid"})
            out[member] = nullptr;
        bool some = true;
        if (!choice.method) {
            if (!std::isnan(choice.levels[0])) lower = integer ? std::ceil(choice.levels[0]) : choice.levels[0];
            if (!std::isnan(choice.levels[1])) upper = integer ? std::floor(choice.levels[1]) : choice.levels[1];
            some = lower <= upper && lower <= TypeMaximum(type_) && upper >= TypeMinimum(type_);
            if (lower < TypeMinimum(type_) || upper > TypeMaximum(type_))
                Warn("levels-outside-type", "the levels " + choice.text + (some ? " reach beyond" : " lie outside") +
                                                " the grey levels of " + TypePhrase(type_) + ", 0 to " +
                                                Rounded(TypeMaximum(type_), 0) +
                                                (some ? "" : ": no pixel can have them"));
            if (some) Check(process_->Threshold(lower, upper, 1, result_.phase.Out()), process_);
        } else {
            if (!chosen_.error.empty()) throw std::runtime_error(chosen_.error);
            Doubts();
            some = chosen_.none.empty();
            const double cut = settings_.bright ? chosen_.brightCut : chosen_.darkCut;
            if (some) result_.phase = Side(cut, settings_.bright);
            if (settings_.bright)
                lower = integer ? std::max(lower, std::floor(cut) + 1) : cut;
            else
                upper = integer ? std::min(upper, std::floor(cut)) : cut;
        }
        if (!some)
            Check(process_->Threshold(TypeMinimum(type_), TypeMaximum(type_), 0, result_.phase.Out()), process_);
        else
            result_.movedPhase = [process = process_, type = type_, lower, upper,
                                  above = choice.method && settings_.bright && !integer](double shift) {
                return MovePhase(process, type, lower, upper, above, shift);
            };
        if (some || !choice.method) {
            const BinaryMeasurements bits = MeasureBitmap(result_.phase);
            out["lower"] = Finite(lower);  // first and last grey level of the phase; none if lower > upper
            out["upper"] = Finite(upper);
            out["pixels"] = bits.pixelCount;
            out["areaFraction"] = Fraction(bits.pixelCount);
            out["areaSquareMicrons"] = subject_.Area(bits.pixelCount);
            out["xCentroid"] = Finite(bits.xCentroid);
            out["yCentroid"] = Finite(bits.yCentroid);
        }
        result_.document["phase"] = std::move(out);
    }

    const MeasureSettings& settings_;
    Measurement result_;
    Subject subject_;
    ComPtr<IImageProcess> process_;
    LONG type_;
    SGrayMeasurements grey_ = {};
    ComPtr<IHistogram> fine_;       // with as many bins as the image offers
    ComPtr<IHistogram> histogram_;  // for the thresholds: regrouped, and smoothed on request
    double largest_ = 0;            // largest grey level of the region
    int64_t inside_ = 0;            // pixels in the luminance range
    double dip_ = 0;
    ThresholdResult chosen_;
};

}  // namespace

Measurement MeasureImage(ComPtr<IImageVPAExPlus> image, const std::string& shownName, const MeasureSettings& settings) {
    return Measuring(std::move(image), shownName, settings).Run();
}

}  // namespace tool
