// Saving to files, pixel size and the limit of loading.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageFiles : public ImagePart<IImageFile> {
public:
    STDMETHODIMP SaveToFile(BSTR fileName, ImageFileFormat format) noexcept override;
    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override;
    STDMETHODIMP PutMicronsPerPixel(double x, double y) noexcept override;
    STDMETHODIMP get_SampleLimit(LONG* limit) noexcept override;
    STDMETHODIMP put_SampleLimit(LONG limit) noexcept override;
};

}  // namespace orlix
