#include "surface.hpp"

#include <orlix/client.hpp>

#include <cmath>
#include <stdexcept>

namespace tool {

using namespace orlix;

namespace {

// One kind of surface: its methods of the interface and the fields of its record.
template <class Record>
struct Kind {
    const char* id;
    const char* formula;
    int points;
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*fit)(Record*);
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*robustFit)(double, Record*);
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*correct)(Record*);
    std::vector<std::pair<const char*, double Record::*>> coefficients;
};

template <class Record>
class SurfaceOf final : public Surface {
public:
    explicit SurfaceOf(Kind<Record> kind) : kind_(std::move(kind)) { record_.m_lSize = sizeof record_; }

    const char* id() const override { return kind_.id; }
    const char* formula() const override { return kind_.formula; }
    int points() const override { return kind_.points; }

    HRESULT Fit(const ComPtr<IOrlixImageProcess>& image, std::optional<double> robust) override {
        return Check(robust ? (image.get()->*kind_.robustFit)(*robust, &record_) : (image.get()->*kind_.fit)(&record_),
                     image);
    }
    void Subtract(const ComPtr<IOrlixImageProcess>& image, double mean) const override {
        Record record = record_;
        record.m_dAverage = mean;
        Check((image.get()->*kind_.correct)(&record), image);
    }

    double average() const override { return record_.m_dAverage; }
    std::vector<std::pair<const char*, double>> Coefficients() const override {
        std::vector<std::pair<const char*, double>> out;
        for (const auto& [name, field] : kind_.coefficients) out.emplace_back(name, record_.*field);
        return out;
    }
    std::pair<double, double> Slopes() const override {
        if constexpr (std::is_same_v<Record, SPlanarFit>) return {record_.m_dAlpha, record_.m_dBeta};
        return {0, 0};
    }
    double ApexRadius() const override {
        if constexpr (requires { record_.m_dZScale; }) return record_.m_dRadius * std::fabs(record_.m_dZScale);
        return 0;
    }

private:
    Kind<Record> kind_;
    Record record_ = {};
};

template <class Record>
std::unique_ptr<Surface> Make(Kind<Record> kind) {
    return std::make_unique<SurfaceOf<Record>>(std::move(kind));
}

using I = IOrlixImageProcess;

std::unique_ptr<Surface> Plane() {
    using R = SPlanarFit;
    return Make<R>({"plane",
                    "z = alpha x + beta y + gamma",
                    3,
                    &I::get_PlanarFit,
                    &I::get_RobustPlanarFit,
                    &I::CorrectPlanar,
                    {{"alpha", &R::m_dAlpha}, {"beta", &R::m_dBeta}, {"gamma", &R::m_dGamma}}});
}

std::unique_ptr<Surface> Biquadratic() {
    using R = SBiquadraticFit;
    return Make<R>({"biquadratic",
                    "z = K0 + K1 y + K2 x + K3 y^2 + K4 x y + K5 x^2",
                    6,
                    &I::get_BiquadraticFit,
                    &I::get_RobustBiquadraticFit,
                    &I::CorrectBiquadratic,
                    {{"K0", &R::m_dK0},
                     {"K1", &R::m_dK1},
                     {"K2", &R::m_dK2},
                     {"K3", &R::m_dK3},
                     {"K4", &R::m_dK4},
                     {"K5", &R::m_dK5}}});
}

std::unique_ptr<Surface> Bicubic() {
    using R = SBicubicFit;
    return Make<R>({"bicubic",
                    "z = K0 + K1 y + K2 x + K3 y^2 + K4 x y + K5 x^2 + K6 y^3 + K7 x y^2 + K8 x^2 y + K9 x^3",
                    10,
                    &I::get_BicubicFit,
                    &I::get_RobustBicubicFit,
                    &I::CorrectBicubic,
                    {{"K0", &R::m_dK0},
                     {"K1", &R::m_dK1},
                     {"K2", &R::m_dK2},
                     {"K3", &R::m_dK3},
                     {"K4", &R::m_dK4},
                     {"K5", &R::m_dK5},
                     {"K6", &R::m_dK6},
                     {"K7", &R::m_dK7},
                     {"K8", &R::m_dK8},
                     {"K9", &R::m_dK9}}});
}

template <class R>
std::vector<std::pair<const char*, double R::*>> HemisphereFields() {
    return {{"xCenter", &R::m_dXCenter},
            {"yCenter", &R::m_dYCenter},
            {"zCenter", &R::m_dZCenter},
            {"zScale", &R::m_dZScale},
            {"radius", &R::m_dRadius}};
}

std::unique_ptr<Surface> Hemisphere() {
    using R = SHemisphereFit;
    return Make<R>({"hemisphere", "(x - xCenter)^2 + (y - yCenter)^2 + zScale^2 (z - zCenter)^2 = radius^2", 5,
                    &I::get_HemisphereFit, &I::get_RobustHemisphereFit, &I::CorrectHemisphere, HemisphereFields<R>()});
}

std::unique_ptr<Surface> AngledHemisphere() {
    using R = SAngledHemisphereFit;
    auto fields = HemisphereFields<R>();
    fields.emplace_back("alpha", &R::m_dAlpha);
    fields.emplace_back("beta", &R::m_dBeta);
    return Make<R>({"angled-hemisphere", "a hemisphere as above, tilted by alpha along x and beta along y (radians)", 7,
                    &I::get_AngledHemisphereFit, &I::get_RobustAngledHemisphereFit, &I::CorrectAngledHemisphere,
                    std::move(fields)});
}

constexpr std::pair<const char*, std::unique_ptr<Surface> (*)()> kSurfaces[] = {
    {"plane", &Plane},
    {"biquadratic", &Biquadratic},
    {"bicubic", &Bicubic},
    {"hemisphere", &Hemisphere},
    {"angled-hemisphere", &AngledHemisphere},
};

}  // namespace

std::vector<std::string> SurfaceNames() {
    std::vector<std::string> names;
    for (const auto& [name, make] : kSurfaces) names.emplace_back(name);
    return names;
}

std::string SurfaceList() {
    std::string list;
    for (const auto& [name, make] : kSurfaces) list += (list.empty() ? "" : ", ") + std::string(name);
    return list;
}

std::unique_ptr<Surface> MakeSurface(std::string_view name) {
    for (const auto& [known, make] : kSurfaces)
        if (name == known) return make();
    throw std::invalid_argument("no such surface: " + std::string(name));
}

}  // namespace tool
