// The boundary of entry points that belong to no class.
#pragma once

#include "component/guard.hpp"

namespace orlix {

// S_OK, or the result of the exception that the body throws. Unlike a method, an entry point does not touch the
// thread's error information.
template <class Body>
HRESULT ResultOf(Body&& body) noexcept {
    try {
        body();
        return S_OK;
    } catch (...) {
        return ResultOfCurrentException(GUID_NULL);
    }
}

}  // namespace orlix
