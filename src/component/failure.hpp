// The exceptions of the library. Guarded() (guard.hpp) is the only place that converts them to results.
#pragma once

#include <orlix/orlix.h>

#include <exception>

namespace orlix {

// A failure with the text for the client. The text is a literal where the failure is raised.
class Failure : public std::exception {
public:
    explicit Failure(const char* message, HRESULT result = E_FAIL) noexcept : message_(message), result_(result) {}
    const char* what() const noexcept override { return message_; }
    HRESULT result() const noexcept { return result_; }

private:
    const char* message_;
    HRESULT result_;
};

// A failure of whichever method was called: the boundary prefixes "IInterface::Method: " to the rest, which is a
// literal where the failure is raised. A method whose contract specifies no text gives just E_FAIL.
class MethodFailure : public std::exception {
public:
    explicit MethodFailure(const char* rest) noexcept : rest_(rest) {}
    const char* what() const noexcept override { return rest_; }

private:
    const char* rest_;
};

// There is no image, or its pixels must not be touched.
class NoImage : public MethodFailure {
public:
    NoImage() noexcept : MethodFailure("no image.") {}
};

// The same for an image that was passed in.
class NoSourceImage : public MethodFailure {
public:
    NoSourceImage() noexcept : MethodFailure("no source image.") {}
};

// A result without a text: the result of a foreign interface, or E_POINTER for a null pointer.
class FailedResult : public std::exception {
public:
    explicit FailedResult(HRESULT result) noexcept : result_(result) {}
    const char* what() const noexcept override { return "failed result"; }
    HRESULT result() const noexcept { return result_; }

private:
    HRESULT result_;
};

inline void Require(const void* pointer) {
    if (!pointer) throw FailedResult(E_POINTER);
}

// For calls on interfaces: return S_OK and S_FALSE, raise failures. Demand() turns them into E_FAIL, like any internal
// failure. PassOn() keeps the result, where the contract says so (regions, bitmaps and histograms that processing
// calls). A text reported by the callee stays reported.
inline HRESULT Demand(HRESULT result) {
    if (FAILED(result)) throw FailedResult(E_FAIL);
    return result;
}
inline HRESULT PassOn(HRESULT result) {
    if (FAILED(result)) throw FailedResult(result);
    return result;
}

}  // namespace orlix
