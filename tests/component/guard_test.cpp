#include "component/guard.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/objects.hpp"

namespace orlix {
namespace {

constexpr CLSID kUnregistered = {0x6a1b5f10, 0x1c2d, 0x4e3f, {0x90, 0x01, 0x10, 0x20, 0x30, 0x40, 0x50, 0x10}};

// The description of the thread's error information, which it clears; "none" when there is none.
std::string TakeText() {
    const auto report = TakeErrorReport();
    return report ? report->description : "none";
}

void Report(const char* text) {
    Guarded(kUnregistered, [&] { throw Failure(text); });
}

TEST(Boundary, TurnsWhatIsThrownIntoResultAndText) {
    const struct {
        void (*body)();
        HRESULT result;
        const char* text;
    } cases[] = {
        {[] {}, S_OK, "none"},
        {[] { throw Failure("IThing::Do: no."); }, E_FAIL, "IThing::Do: no."},
        {[] { throw Failure("IThing::Do: no.", DISP_E_EXCEPTION); }, DISP_E_EXCEPTION, "IThing::Do: no."},
        {[] { Require(nullptr); }, E_POINTER, "none"},
        {[] { PassOn(E_NOTIMPL); }, E_NOTIMPL, "none"},
        {[] { throw NoImage(); }, E_FAIL, "none"},
        {[] { throw std::bad_alloc(); }, E_FAIL, "none"},
        {[] { throw std::runtime_error("inside"); }, E_FAIL, "none"},
        {[] { throw 7; }, E_FAIL, "none"},
    };
    for (const auto& [body, result, text] : cases) {
        SCOPED_TRACE(text);
        Report("of the call before");
        EXPECT_EQ(result, Guarded(kUnregistered, body));
        EXPECT_EQ(text, TakeText());
    }
}

TEST(Boundary, ReportsAMissingImageInTheNameOfTheMethod) {
    const auto missing = [] { throw NoImage(); };
    EXPECT_EQ(E_FAIL, Guarded(kUnregistered, missing, {NameOf<IOrlixImageProcess>(), "get_PlanarFit"}));
    EXPECT_EQ("IOrlixImageProcess::get_PlanarFit: no image.", TakeText());
}

TEST(Boundary, PassesResultsOn) {
    EXPECT_EQ(S_FALSE, Guarded(kUnregistered, [] { return S_FALSE; }));
    EXPECT_EQ(E_NOTIMPL, Guarded(kUnregistered, [] { return E_NOTIMPL; }));
    EXPECT_EQ(S_FALSE, PassOn(S_FALSE));
    EXPECT_NO_THROW(Require(&kUnregistered));
}

TEST(Boundary, ErrorInformationBelongsToItsThread) {
    Report("of this thread");
    std::string before, after;
    std::thread([&] {
#ifdef _WIN32
        CoInitialize(nullptr);
#endif
        before = TakeText();
        Report("of the other thread");
        after = TakeText();
        Report("goes with its thread");
#ifdef _WIN32
        CoUninitialize();
#endif
    }).join();
    EXPECT_EQ("none", before);
    EXPECT_EQ("of the other thread", after);
    EXPECT_EQ("of this thread", TakeText());
}

// A host may flush denormals to zero or round in another direction. Methods compute as always and leave that as it was.
TEST(Boundary, SetsTheFloatingPointControlAndRestoresTheHosts) {
    constexpr unsigned kFlushToZeroRoundUp = 0x8000 | 0x4000 | 0x1f80;
    const unsigned own = _mm_getcsr();
    volatile double smallest = 2.2250738585072014e-308, one = 1.0, tiny = 1e-30;
    double half = 0, sum = 0;
    _mm_setcsr(kFlushToZeroRoundUp);
    const HRESULT result = Guarded(kUnregistered, [&] {
        half = smallest / 2;
        sum = one + tiny;
        throw 7;
    });
    const unsigned control = _mm_getcsr() & ~0x3fu;  // without the status bits
    _mm_setcsr(own);
    EXPECT_EQ(E_FAIL, result);
    EXPECT_EQ(1.1125369292536007e-308, half);
    EXPECT_EQ(1.0, sum);
    EXPECT_EQ(kFlushToZeroRoundUp, control);
}

}  // namespace
}  // namespace orlix
