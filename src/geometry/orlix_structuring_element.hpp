// The component class of structuring elements. The interface is documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include <vector>

#include "component/object.hpp"
#include "geometry/structuring_element.hpp"

class OrlixStructuringElement final : public orlix::Object<OrlixStructuringElement, IStructuringElement> {
public:
    STDMETHODIMP AddElement(LONG x, LONG y) noexcept override;
    STDMETHODIMP get_NumberOfElements(LONG* value) noexcept override;
    STDMETHODIMP ResetElements() noexcept override;
    STDMETHODIMP get_Elements(SElement** value) noexcept override;
    STDMETHODIMP Reflect() noexcept override;
    STDMETHODIMP Translate(LONG x, LONG y) noexcept override;
    STDMETHODIMP GetExtent(LONG* left, LONG* top, LONG* right, LONG* bottom) noexcept override;
    STDMETHODIMP CreateDisk(double radius) noexcept override;
    STDMETHODIMP get_BinaryElements(LONG bit, SElement** begin, SElement** end) noexcept override;

private:
    std::vector<SElement> elements_;
    orlix::ByteLists bytes_;
};
