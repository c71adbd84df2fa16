// What late binding costs, on Windows: calls by number (IDispatch::Invoke) beside direct ones, and pixels of an image
// of 4096x4096 to and from an array beside memcpy. Medians of 9 runs, interleaved.
#include <orlix/client.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace orlix::bench {
namespace {

constexpr int kRuns = 9;

struct Subject {
    const char* name;
    int times;  // calls in a run
    std::function<void()> call;
    std::vector<double> nanoseconds = {};  // of a call, for each run
};

void Measure(std::vector<Subject>& subjects) {
    for (int run = 0; run < kRuns; ++run)
        for (Subject& subject : subjects) {
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < subject.times; ++i) subject.call();
            const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
            subject.nanoseconds.push_back(time.count() / subject.times);
        }
    for (Subject& subject : subjects) {
        std::ranges::sort(subject.nanoseconds);
        std::printf("| %s | %.0f |\n", subject.name, subject.nanoseconds[kRuns / 2]);
    }
}

class Script {
public:
    explicit Script(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    DISPID IdOf(const OLECHAR* name) const {
        LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
        DISPID id = 0;
        Check(object_->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
        return id;
    }
    // The arguments from the last to the first. The caller clears the result.
    VARIANT Invoke(DISPID id, std::vector<VARIANT> backwards = {}) const {
        DISPPARAMS arguments = {backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
        VARIANT result;
        VariantInit(&result);
        Check(object_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &arguments, &result, nullptr,
                              nullptr));
        return result;
    }

private:
    ComPtr<IDispatch> object_;
};

VARIANT Number(LONG number) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

void Run() {
    constexpr LONG kSize = 4096;
    auto small = CreateObject<IImageVPAExPlus>("Orlix.Image"), large = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(small->Create(16, 16, 1, DT_BYTE, 1), small);
    Check(large->Create(kSize, kSize, 1, DT_BYTE, 1), large);
    const auto picture = Cast<IPictureEx>(small);
    const auto process = Cast<IImageProcess>(small);
    const auto fits = Cast<IOrlixImageProcess>(small);
    const Script script(Cast<IDispatch>(small)), pixels(Cast<IDispatch>(large));
    const DISPID width = script.IdOf(L"Width"), scalar = script.IdOf(L"ScalarEquals"), fit = script.IdOf(L"PlanarFit"),
                 get = pixels.IdOf(L"GetPixels"), put = pixels.IdOf(L"PutPixels");

    VARIANT array = pixels.Invoke(get);
    std::vector<unsigned char> copy(size_t{kSize} * kSize);
    std::vector<Subject> subjects = {
        {"Width, direct", 200'000, [&] { Call(picture, &IPictureEx::get_Width); }},
        {"Width, by number", 200'000, [&] { script.Invoke(width); }},
        {"ScalarEquals of 16x16, direct", 200'000, [&] { Check(process->ScalarEquals(9), process); }},
        {"ScalarEquals of 16x16, by number", 200'000, [&] { script.Invoke(scalar, {Number(9)}); }},
        {"PlanarFit of 16x16, direct", 50'000, [&] { Call(fits, &IOrlixImageProcess::get_PlanarFit); }},
        {"PlanarFit of 16x16, by number, with its record as an object", 50'000,
         [&] {
             VARIANT record = script.Invoke(fit);
             VariantClear(&record);
         }},
        {"memcpy of 4096x4096 bytes", 5, [&] { std::memcpy(copy.data(), array.parray->pvData, copy.size()); }},
        {"memcpy of 4096x4096 bytes into new memory", 5,
         [&] {
             const std::vector<unsigned char> fresh(copy);
             copy[0] = static_cast<unsigned char>(fresh[1] + 1);
         }},
        {"GetPixels of 4096x4096 bytes", 5,
         [&] {
             VARIANT result = pixels.Invoke(get);
             VariantClear(&result);
         }},
        {"PutPixels of 4096x4096 bytes", 5,
         [&] {
             pixels.Invoke(put, {array, Number(0)});
         }},
    };
    std::printf("| call | ns |\n|---|---|\n");
    Measure(subjects);
    VariantClear(&array);
}

}  // namespace
}  // namespace orlix::bench

int main() try {
    const orlix::Apartment apartment;
    orlix::bench::Run();
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
