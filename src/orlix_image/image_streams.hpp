// Loading and saving the image object as a whole.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageStreams : public ImagePart<IPersistStreamInitEx> {
public:
    STDMETHODIMP GetClassID(CLSID* clsid) noexcept override;
    STDMETHODIMP IsDirty() noexcept override;
    STDMETHODIMP Load(IStream* stream) noexcept override;
    STDMETHODIMP Save(IStream* stream, BOOL clearDirty) noexcept override;
    STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) noexcept override;
    STDMETHODIMP InitNew() noexcept override;
    STDMETHODIMP ReLoad(IStream* stream) noexcept override;

private:
    // Replaces the image by the content of a stream; a failure leaves everything unchanged.
    void LoadFrom(IStream* stream);

    bool initialised_ = false;  // by Load, ReLoad or InitNew
};

}  // namespace orlix
