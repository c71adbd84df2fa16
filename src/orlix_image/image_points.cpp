#include "orlix_image/image_points.hpp"

#include <type_traits>
#include <utility>

#include "process/pixel_changes.hpp"

namespace orlix {

STDMETHODIMP ImagePoints::put_NumberOfBins(LONG bins) noexcept {
    return Guarded<IImageProcess>([&] { WithFrame([&](auto& frame) { frame.PutNumberOfBins(bins); }); });
}

STDMETHODIMP ImagePoints::PutLuminanceRange(double lower, double upper) noexcept {
    return Guarded<IImageProcess>([&] { WithFrame([&](auto& frame) { frame.PutLuminanceRange(lower, upper); }); });
}

STDMETHODIMP ImagePoints::SnapLuminanceRange(double trimLower, double trimUpper, LONG roundOut) noexcept {
    return Guarded<IImageProcess>([&] {
        return WithFrame([&]<class Pixel>(Frame<Pixel>& frame) {
            const Selection<Pixel> at = frame.Select();
            const auto range = TrimmedRange(at, trimLower, trimUpper, at.settings().bins());
            if (!range) return S_FALSE;
            const bool whole = std::is_same_v<Pixel, BYTE> && roundOut != 0;
            frame.PutLuminanceRange(whole ? 0.0 : range->lower, whole ? 255.0 : range->upper);
            return S_OK;
        });
    });
}

STDMETHODIMP ImagePoints::get_Table(LONG entry, double* value) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(value);
        *value = WithFrame([&](auto& frame) { return frame.settings().Entry(entry); });
    });
}

STDMETHODIMP ImagePoints::put_Table(LONG entry, double value) noexcept {
    return Guarded<IImageProcess>([&] { WithFrame([&](auto& frame) { frame.PutTableEntry(entry, value); }); });
}

STDMETHODIMP ImagePoints::EqualizeTable(EqualizationType type) noexcept {
    return Guarded<IImageProcess>([&] {
        WithFrame([&](auto& frame) {
            auto table = EqualizedTable(frame.Select(), static_cast<LONG>(type));
            if (table) frame.PutTable(std::move(*table));
        });
    });
}

STDMETHODIMP ImagePoints::LUT() noexcept {
    return Guarded<IImageProcess>([&] { Change([](const auto& at) { LookUp(at); }); });
}

STDMETHODIMP ImagePoints::Invert() noexcept {
    return Guarded<IImageProcess>([&] { Change([](const auto& at) { orlix::Invert(at); }); });
}

STDMETHODIMP ImagePoints::ScalarEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] { Change([=](const auto& at) { Fill(at, value); }); });
}

STDMETHODIMP ImagePoints::ScalarDivideEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] {
        WithFrame([&](auto& frame) {
            if (value == 0.0) throw Failure("IImageProcess::ScalarDivideEquals: cannot divide by zero.");
            frame.Change([&](const auto& at) { Divide(at, value); });
        });
    });
}

STDMETHODIMP ImagePoints::ScalarPlusEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] { Change([=](const auto& at) { Add(at, value); }); });
}

STDMETHODIMP ImagePoints::CastEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        WithFrame([&](auto& frame) {
            frame.ChangeFrom(source, band, [](const auto& at, const auto& sources) { Cast(at, sources); });
        });
    });
}

STDMETHODIMP ImagePoints::PlusEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        WithFrame([&](auto& frame) {
            frame.ChangeFrom(source, band, [](const auto& at, const auto& sources) { Add(at, sources); });
        });
    });
}

// Not built yet (docs/not-built-yet.md): these refuse and write nothing.

STDMETHODIMP ImagePoints::get_LocalMaxima(IBitmap**) noexcept {
    return Guarded([] { throw FailedResult(E_NOTIMPL); });
}
STDMETHODIMP ImagePoints::get_LocalMinima(IBitmap**) noexcept {
    return Guarded([] { throw FailedResult(E_NOTIMPL); });
}
STDMETHODIMP ImagePoints::LocalBackgroundCorrect() noexcept {
    return Guarded([] { throw FailedResult(E_NOTIMPL); });
}

}  // namespace orlix
