// The operations as a client calls them: through IImageProcess, on objects created by ProgID. "whole" is the whole
// image, "circle" the largest circle in it; rates count visited pixels. memcpy copies the same picture.
#include <benchmark/benchmark.h>
#include <orlix/client.hpp>
#include <orlix/filters.hpp>

#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>

#include "pictures.hpp"

namespace orlix::bench {
namespace {

std::span<const int> sizes = kSizes;

template <class T>
constexpr LONG TypeOf() {
    return std::is_same_v<T, uint8_t> ? DT_BYTE : std::is_same_v<T, uint16_t> ? DT_WORD : DT_Float;
}

template <class T>
constexpr double Scale() {
    return std::is_same_v<T, uint16_t> ? 257.0 : 1.0;  // per grey level
}

// An image with the picture.
template <class T>
struct Subject {
    ComPtr<IImageVPAExPlus> image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    ComPtr<IImageProcess> process;
    int64_t pixels = 0;

    Subject(int size, bool circle) {
        Check(image->Create(size, size, 1, TypeOf<T>(), 0), image);
        process = Cast<IImageProcess>(image);
        const std::vector<T>& picture = Picture<T>(size);
        const T* from = picture.data();
        for (const std::span<T> row : Rows<T>(image)) {
            std::memcpy(row.data(), from, row.size_bytes());
            from += row.size();
        }
        Check(process->PutLuminanceRange(0, 255 * Scale<T>()), process);
        if (circle) {
            const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
            const double centre = 0.5 * (size - 1);
            Check(region->CreateCircle(size, size, centre, centre, 0.5 * size), region);
            Check(process->put_RegionOfInterest(region.get()), process);
        }
        SGrayMeasurements measures = {};
        measures.m_lSize = sizeof measures;
        Check(process->get_GrayMeasurements(GEMT_GrayLocation, &measures), process);
        pixels = measures.m_lPixelCount;
    }
};

template <class T>
using Call = std::function<void(Subject<T>&)>;

template <class T>
void Register(const std::string& operation, const Call<T>& prepare, const Call<T>& call) {
    for (const int size : sizes)
        for (const bool circle : {false, true})
            benchmark::RegisterBenchmark(Name<T>(operation, size, circle ? "circle" : "whole").c_str(),
                                         [=](benchmark::State& state) {
                                             Subject<T> subject(size, circle);
                                             if (prepare) prepare(subject);
                                             for (auto _ : state) call(subject);
                                             state.SetItemsProcessed(state.iterations() * subject.pixels);
                                         });
}

// Calls call(process, source, band), or a method of IImageProcess.
template <class T, class From = T, class Call>
void RegisterSourced(const std::string& operation, const Call& call) {
    for (const int size : sizes)
        for (const bool circle : {false, true})
            benchmark::RegisterBenchmark(Name<T>(operation, size, circle ? "circle" : "whole").c_str(),
                                         [=](benchmark::State& state) {
                                             Subject<T> subject(size, circle);
                                             Subject<From> source(size, false);
                                             for (auto _ : state)
                                                 Check(std::invoke(call, subject.process.get(), source.image.get(), 0));
                                             state.SetItemsProcessed(state.iterations() * subject.pixels);
                                         });
}

// The fit of a surface, and the correction by the surface fitted to the picture.
template <class T, class Record>
void RegisterSurface(const std::string& surface, HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*fit)(Record*),
                     HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*correct)(Record*)) {
    Register<T>("fit " + surface, nullptr, [=](Subject<T>& s) {
        Record record = {};
        Check((Cast<IOrlixImageProcess>(s.image).get()->*fit)(&record));
        benchmark::DoNotOptimize(record);
    });
    const auto record = std::make_shared<Record>();
    Register<T>(
        "correct " + surface,
        [=](Subject<T>& s) { Check((Cast<IOrlixImageProcess>(s.image).get()->*fit)(record.get())); },
        [=](Subject<T>& s) { Check((Cast<IOrlixImageProcess>(s.image).get()->*correct)(record.get())); });
}

template <class T>
void RegisterType() {
    for (const int size : sizes)
        benchmark::RegisterBenchmark(Name<T>("memcpy", size, "memcpy").c_str(), [=](benchmark::State& state) {
            const std::vector<T>& picture = Picture<T>(size);
            std::vector<T> copy(picture.size());
            for (auto _ : state) {
                std::memcpy(copy.data(), picture.data(), picture.size() * sizeof(T));
                benchmark::ClobberMemory();
            }
            state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(picture.size()));
        });

    const double level = Scale<T>();
    Register<T>("threshold", nullptr, [=](Subject<T>& s) {
        ComPtr<IBitmap> bitmap;
        Check(s.process->Threshold(100 * level, 200 * level, 1, bitmap.Out()));
    });
    Register<T>("histogram", nullptr, [](Subject<T>& s) {
        ComPtr<IHistogram> histogram;
        Check(s.process->get_Histogram(histogram.Out()));
    });
    Register<T>("measure", nullptr, [](Subject<T>& s) {
        SGrayMeasurements measures = {};
        Check(s.process->get_GrayMeasurements(
            static_cast<GrayExtractMeasurementType>(GEMT_GrayLocation | GEMT_GrayStatistics), &measures));
        benchmark::DoNotOptimize(measures);
    });
    Register<T>("invert", nullptr, [](Subject<T>& s) { Check(s.process->Invert()); });
    Register<T>("add", nullptr, [=](Subject<T>& s) { Check(s.process->ScalarPlusEquals(3 * level)); });
    Register<T>("divide", nullptr, [](Subject<T>& s) { Check(s.process->ScalarDivideEquals(1.01)); });
    Register<T>("fill", nullptr, [=](Subject<T>& s) { Check(s.process->ScalarEquals(77 * level)); });
    Register<T>(
        "lut",
        [=](Subject<T>& s) {
            // A permutation, so that repeated look-ups keep all levels.
            for (LONG i = 0; i < 256; ++i) Check(s.process->put_Table(i, (i * 167 + 13) % 256 * level));
        },
        [](Subject<T>& s) { Check(s.process->LUT()); });
    Register<T>("create", nullptr, [](Subject<T>& s) {
        LONG bands = 0, width = 0, height = 0;
        s.image->Dimensions(&bands, &width, &height);
        const auto created = CreateObject<IImageVPAExPlus>("Orlix.Image");
        Check(created->Create(width, height, 1, TypeOf<T>(), 1), created);
    });
    RegisterSourced<T>("copy", [](IImageProcess* process, IImageVPA* source, LONG) {
        return Cast<IImageVPAExPlus>(ComPtr<IImageProcess>(process))->CreateFromImage(source, 0);
    });
    Register<T>("failing call", nullptr, [](Subject<T>& s) {
        if (s.process->put_BandToProcess(7) == S_OK) throw std::logic_error("that band is not there");
    });
    RegisterSourced<T, uint8_t>("cast from u8", &IImageProcess::CastEquals);
    RegisterSourced<T, uint16_t>("cast from u16", &IImageProcess::CastEquals);
    RegisterSourced<T, float>("cast from f32", &IImageProcess::CastEquals);
    RegisterSourced<T>(std::string("plus ") + NameOf<T>(), &IImageProcess::PlusEquals);
    for (const NamedFilter& filter : kNamedFilters) {
        RegisterSourced<T>(filter.name, filter.apply);
        Register<T>(std::string(filter.name) + " in place", nullptr,
                    [&filter](Subject<T>& s) { Check((s.process.get()->*filter.apply)(s.image.get(), 0)); });
    }
    for (const LONG halfSize : {1, 15, 63})
        RegisterSourced<T>("ExtremumSharpening " + std::to_string(halfSize),
                           [=](IImageProcess* process, IImageVPA* source, LONG band) {
                               return process->ExtremumSharpening(halfSize, source, band);
                           });
    RegisterSurface<T>("plane", &IOrlixImageProcess::get_PlanarFit, &IOrlixImageProcess::CorrectPlanar);
    RegisterSurface<T>("biquadratic", &IOrlixImageProcess::get_BiquadraticFit, &IOrlixImageProcess::CorrectBiquadratic);
    RegisterSurface<T>("bicubic", &IOrlixImageProcess::get_BicubicFit, &IOrlixImageProcess::CorrectBicubic);
}

}  // namespace

#ifndef ORLIX_BENCH_OPENCV
void RegisterOpenCv(std::span<const int>) {}
#endif

}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (argc == 2 && std::string_view(argv[1]) == "--small") {
        sizes = kSmallSizes;
        --argc;
    }
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RegisterType<uint8_t>();
    RegisterType<uint16_t>();
    RegisterType<float>();
    RegisterOpenCv(sizes);
    benchmark::RunSpecifiedBenchmarks();
}
