// The boundary between the library's code, which throws, and interface methods, which return results.
#pragma once

#include <string_view>
#include <type_traits>

#include "component/failure.hpp"
#include "platform/floating_point.hpp"

namespace orlix {

// A method of the contract: "IImageProcess", "Invert". Without an interface name a MethodFailure has no text.
struct MethodName {
    std::string_view owner;
    const char* method = "";
};

// Call this in an exception handler: it reports the current exception on behalf of the class and returns the method's
// result. A Failure is reported with its text, a MethodFailure with the method's name in front; anything other than
// these and FailedResult (out of memory, ...) is a bare E_FAIL.
HRESULT ResultOfCurrentException(const CLSID& clsid, const MethodName& name = {}) noexcept;

// Runs the body of an interface method. The thread's error information is cleared first, so that after a failure it
// holds this method's text or none. The body returns an HRESULT, or nothing for S_OK.
template <class Body>
HRESULT Guarded(const CLSID& clsid, Body&& body, const MethodName& name = {}) noexcept {
    const FloatingPointScope arithmetic;
    SetErrorInfo(0, nullptr);
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
            body();
            return S_OK;
        } else {
            return body();
        }
    } catch (...) {
        return ResultOfCurrentException(clsid, name);
    }
}

}  // namespace orlix
