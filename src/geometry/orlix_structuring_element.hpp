// The component class of structuring elements. The interface is documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include <vector>

#include "component/object.hpp"
#include "geometry/structuring_element.hpp"

class OrlixStructuringElement final : public orlix::Object<OrlixStructuringElement, IStructuringElement> {
public:
    STDMETHODIMP AddElement(LONG X, LONG Y) noexcept override;
    STDMETHODIMP get_NumberOfElements(LONG* hVal) noexcept override;
    STDMETHODIMP ResetElements() noexcept override;
    STDMETHODIMP get_Elements(SElement** hVal) noexcept override;
    STDMETHODIMP Reflect() noexcept override;
    STDMETHODIMP Translate(LONG X, LONG Y) noexcept override;
    STDMETHODIMP GetExtent(LONG* Left, LONG* Top, LONG* Right, LONG* Bottom) noexcept override;
    STDMETHODIMP CreateDisk(double Radius) noexcept override;
    STDMETHODIMP get_BinaryElements(LONG lBit, SElement** hBegin, SElement** hEnd) noexcept override;

private:
    std::vector<SElement> elements_;
    orlix::ByteLists bytes_;
};
