// The five surfaces that can be fitted, behind one face.
#pragma once

#include "contract/support.hpp"

#include <cstddef>

namespace orlix::testing {

// What the records of all fits hold: the caller's size, the average, and up to ten numbers in the record's order.
struct SurfaceRecord {
    LONG size = 4711;
    std::array<double, 11> values;
    SurfaceRecord() { values.fill(77); }
    bool operator==(const SurfaceRecord& other) const {  // bit for bit
        return size == other.size && std::memcmp(values.data(), other.values.data(), sizeof values) == 0;
    }
};

struct SurfaceKind {
    using Process = IOrlixImageProcess&;
    std::string name;  // in the names of methods
    std::string text;  // in texts
    LONG pixels;       // that determine it
    size_t numbers;    // behind the average
    std::function<HRESULT(Process, SurfaceRecord&)> fit;
    std::function<HRESULT(Process, double probability, SurfaceRecord&)> robustFit;
    std::function<HRESULT(Process, const SurfaceRecord&)> correct;
    std::function<HRESULT(Process, double probability)> robustCorrect;
};

template <class Record>
struct SurfaceMethods {
    using P = IOrlixImageProcess;
    HRESULT (STDMETHODCALLTYPE P::*fit)(Record*);
    HRESULT (STDMETHODCALLTYPE P::*robustFit)(double, Record*);
    HRESULT (STDMETHODCALLTYPE P::*correct)(Record*);
    HRESULT (STDMETHODCALLTYPE P::*robustCorrect)(double);

    SurfaceKind Kind(const char* name, const char* text, LONG pixels) const {
        constexpr size_t kSize = sizeof(Record) - offsetof(Record, m_dAverage);
        const auto with = [](SurfaceRecord& record, const auto& call) {
            Record own = {};
            own.m_lSize = record.size;
            std::memcpy(&own.m_dAverage, record.values.data(), kSize);
            const HRESULT result = call(&own);
            record.size = own.m_lSize;
            std::memcpy(record.values.data(), &own.m_dAverage, kSize);
            return result;
        };
        return {name,
                text,
                pixels,
                kSize / sizeof(double) - 1,
                [=, fn = fit](P& p, SurfaceRecord& r) { return with(r, [&](Record* own) { return (p.*fn)(own); }); },
                [=, fn = robustFit](P& p, double probability, SurfaceRecord& r) {
                    return with(r, [&](Record* own) { return (p.*fn)(probability, own); });
                },
                [=, fn = correct](P& p, SurfaceRecord r) { return with(r, [&](Record* own) { return (p.*fn)(own); }); },
                [fn = robustCorrect](P& p, double probability) { return (p.*fn)(probability); }};
    }
};

inline const std::vector<SurfaceKind>& SurfaceKinds() {
    using P = IOrlixImageProcess;
    static const std::vector<SurfaceKind> kinds = {
        SurfaceMethods<SPlanarFit>{&P::get_PlanarFit, &P::get_RobustPlanarFit, &P::CorrectPlanar,
                                   &P::RobustCorrectPlanar}
            .Kind("Planar", "planar", 3),
        SurfaceMethods<SBiquadraticFit>{&P::get_BiquadraticFit, &P::get_RobustBiquadraticFit, &P::CorrectBiquadratic,
                                        &P::RobustCorrectBiquadratic}
            .Kind("Biquadratic", "biquadratic", 6),
        SurfaceMethods<SBicubicFit>{&P::get_BicubicFit, &P::get_RobustBicubicFit, &P::CorrectBicubic,
                                    &P::RobustCorrectBicubic}
            .Kind("Bicubic", "bicubic", 10),
        SurfaceMethods<SHemisphereFit>{&P::get_HemisphereFit, &P::get_RobustHemisphereFit, &P::CorrectHemisphere,
                                       &P::RobustCorrectHemisphere}
            .Kind("Hemisphere", "hemisphere", 5),
        SurfaceMethods<SAngledHemisphereFit>{&P::get_AngledHemisphereFit, &P::get_RobustAngledHemisphereFit,
                                             &P::CorrectAngledHemisphere, &P::RobustCorrectAngledHemisphere}
            .Kind("AngledHemisphere", "angled hemisphere", 7)};
    return kinds;
}

}  // namespace orlix::testing
