// Information about the module.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageModule : public ImagePart<IModuleInformation> {
public:
    STDMETHODIMP get_Version(BSTR* version) noexcept override;
    STDMETHODIMP get_ModulePath(BSTR* path) noexcept override;
    STDMETHODIMP get_NumberOfKernels(LONG* number) noexcept override;
    STDMETHODIMP GetKernel(LONG index, BSTR* kernel, BSTR* variant) noexcept override;
};

}  // namespace orlix
