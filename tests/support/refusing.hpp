// Clients' objects of which the library needs a few methods only: Refusing<I> implements the interface, and each of its
// methods answers E_NOTIMPL. Counted, with references and QueryInterface:
//
//     class Counts final : public CountedObject<Refusing<IHistogram>> {
//         STDMETHODIMP get_NumberOfBins(LONG* bins) noexcept override { ... }
//     };
#pragma once

#include <orlix/counted_object.hpp>

namespace orlix {

template <class I, class Final = I>
struct Refusing;

template <class Final>
struct Refusing<IUnknown, Final> : Final {
    static bool Answers(REFIID) noexcept { return false; }
    // What the methods do that are not implemented.
    virtual HRESULT Refused([[maybe_unused]] const char* method) noexcept { return E_NOTIMPL; }
};

// An interface that the headers do not have: its methods stay to be implemented.
template <class I, class Final>
struct Refusing : Refusing<IUnknown, Final> {
    static bool Answers(REFIID iid) noexcept { return iid == __uuidof(I); }
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "refusing_methods.inc"
#pragma GCC diagnostic pop

template <class I>
struct CountedInterface<Refusing<I>> {
    using Interface = Refusing<I>;
    static bool Answers(REFIID iid) noexcept { return Refusing<I>::Answers(iid); }
};

}  // namespace orlix
