// Text and binary entries that files and streams store with the pixels.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageEntries : public ImagePart<IImageEntries> {
public:
    STDMETHODIMP get_NumberOfTextEntries(LONG* number) noexcept override;
    STDMETHODIMP GetTextEntry(LONG index, BSTR* keyword, BSTR* text) noexcept override;
    STDMETHODIMP PutTextEntry(BSTR keyword, BSTR text) noexcept override;
    STDMETHODIMP RemoveTextEntry(LONG index) noexcept override;
    STDMETHODIMP get_NumberOfBinaryEntries(LONG* number) noexcept override;
    STDMETHODIMP GetBinaryEntry(LONG index, BSTR* keyword, LONG* size) noexcept override;
    STDMETHODIMP ReadBinaryEntry(LONG index, LONG offset, LONG size, unsigned char* bytes) noexcept override;
    STDMETHODIMP PutBinaryEntry(BSTR keyword, LONG size, unsigned char* bytes) noexcept override;
    STDMETHODIMP RemoveBinaryEntry(LONG index) noexcept override;
};

}  // namespace orlix
