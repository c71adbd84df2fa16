// The boundary of the entry points, which belong to no class.
#pragma once

#include "component/guard.hpp"

namespace orlix {

// S_OK, or the result of what the body throws. Unlike a method an entry point leaves the thread's error information
// alone.
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
