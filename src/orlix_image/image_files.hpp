// Loading and saving files, pixel size and the limit of loading.
#pragma once

#include <memory>

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageFiles : public ImagePart<IImageFile> {
public:
    STDMETHODIMP SaveToFile(BSTR fileName, ImageFileFormat format) noexcept override;
    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override;
    STDMETHODIMP PutMicronsPerPixel(double x, double y) noexcept override;
    STDMETHODIMP get_SampleLimit(LONG* limit) noexcept override;
    STDMETHODIMP put_SampleLimit(LONG limit) noexcept override;
    STDMETHODIMP LoadFromFile(BSTR fileName, LONG page) noexcept override;
    STDMETHODIMP GetNumberOfPages(BSTR fileName, LONG* pages) noexcept override;
    STDMETHODIMP get_SignificantBits(LONG* bits) noexcept override;
    STDMETHODIMP put_SignificantBits(LONG bits) noexcept override;
    STDMETHODIMP get_CalibrationSource(BSTR* source) noexcept override;
    STDMETHODIMP get_Quality(LONG* quality) noexcept override;
    STDMETHODIMP put_Quality(LONG quality) noexcept override;
    STDMETHODIMP SaveToStream(IUnknown* stream, ImageFileFormat format) noexcept override;
    STDMETHODIMP LoadFromStream(IUnknown* stream, LONG page) noexcept override;

private:
    // The image that is saved; throws NoImage.
    std::shared_ptr<DisplayedImage> Saved();
    WriteOptions Options();
};

}  // namespace orlix
