#include "orlix_image/orlix_image.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::get_BandToProcess(LONG* band) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(band);
        *band = Typed()->bandToProcess();
    });
}

STDMETHODIMP OrlixImage::put_BandToProcess(LONG band) noexcept {
    return Guarded<IImageProcessBase>([&] { Typed()->PutBandToProcess(band); });
}

STDMETHODIMP OrlixImage::get_RegionOfInterest(IRegionOfInterest** region) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(region);
        *region = nullptr;
        *region = ComPtr<IRegionOfInterest>(Typed()->region()).Detach();
    });
}

STDMETHODIMP OrlixImage::put_RegionOfInterest(IRegionOfInterest* region) noexcept {
    return Guarded<IImageProcessBase>([&] { Typed()->PutRegion(region); });
}

STDMETHODIMP OrlixImage::GetLuminanceRange(double* lower, double* upper) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(lower), Require(upper);
        Typed()->GetLuminanceRange(*lower, *upper);
    });
}

STDMETHODIMP OrlixImage::get_NumberOfBins(LONG* bins) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(bins);
        *bins = Typed()->numberOfBins();
    });
}

STDMETHODIMP OrlixImage::Threshold(double lower, double upper, LONG inside, IBitmap** bitmap) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(bitmap);
        *bitmap = nullptr;
        *bitmap = Typed()->Threshold(lower, upper, inside != 0).Detach();
    });
}

STDMETHODIMP OrlixImage::get_Histogram(IHistogram** histogram) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(histogram);
        *histogram = nullptr;
        *histogram = Typed()->Histogram().Detach();
    });
}

STDMETHODIMP OrlixImage::get_GrayMeasurements(GrayExtractMeasurementType desired, SGrayMeasurements* measure) noexcept {
    return Guarded<IImageProcessBase>([&] {
        Require(measure);
        SGrayMeasurements result = Typed()->GrayMeasurements(static_cast<LONG>(desired));
        result.m_lSize = measure->m_lSize;
        *measure = result;
    });
}

STDMETHODIMP OrlixImage::put_NumberOfBins(LONG bins) noexcept {
    return Guarded<IImageProcess>([&] {
        Typed()->PutNumberOfBins(bins);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::PutLuminanceRange(double lower, double upper) noexcept {
    return Guarded<IImageProcess>([&] {
        Typed()->PutLuminanceRange(lower, upper);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::SnapLuminanceRange(double trimLower, double trimUpper, LONG roundOut) noexcept {
    return Guarded<IImageProcess>([&] {
        const HRESULT result = Typed()->SnapLuminanceRange(trimLower, trimUpper, roundOut != 0);
        if (result == S_OK) modified_ = true;
        return result;
    });
}

STDMETHODIMP OrlixImage::get_Table(LONG entry, double* value) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(value);
        *value = Typed()->GetTable(entry);
    });
}

STDMETHODIMP OrlixImage::put_Table(LONG entry, double value) noexcept {
    return Guarded<IImageProcess>([&] { Typed()->PutTable(entry, value); });
}

STDMETHODIMP OrlixImage::EqualizeTable(EqualizationType type) noexcept {
    return Guarded<IImageProcess>([&] { Typed()->EqualizeTable(static_cast<LONG>(type)); });
}

STDMETHODIMP OrlixImage::LUT() noexcept {
    return Guarded<IImageProcess>([&] { Typed()->LookUp(); });
}

STDMETHODIMP OrlixImage::Invert() noexcept {
    return Guarded<IImageProcess>([&] { Typed()->Invert(); });
}

STDMETHODIMP OrlixImage::ScalarEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] { Typed()->ScalarEquals(value); });
}

STDMETHODIMP OrlixImage::ScalarDivideEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] { Typed()->ScalarDivideEquals(value); });
}

STDMETHODIMP OrlixImage::ScalarPlusEquals(double value) noexcept {
    return Guarded<IImageProcess>([&] { Typed()->ScalarPlusEquals(value); });
}

STDMETHODIMP OrlixImage::CastEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->CastEquals(source, band);
    });
}

STDMETHODIMP OrlixImage::PlusEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        Typed()->PlusEquals(source, band);
    });
}
