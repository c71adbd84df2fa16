// What logic and objects raise. Guarded() (guard.hpp) is the one place that turns it into a result.
#pragma once

#include <orlix/orlix.h>

#include <exception>

namespace orlix {

// A failure with the text that the client is to see. The text is a literal at the place of the failure.
class Failure : public std::exception {
public:
    explicit Failure(const char* message, HRESULT result = E_FAIL) noexcept : message_(message), result_(result) {}
    const char* what() const noexcept override { return message_; }
    HRESULT result() const noexcept { return result_; }

private:
    const char* message_;
    HRESULT result_;
};

// A failure of whichever method was called: the boundary puts "IInterface::Method: " in front of the rest, which is a
// literal at the place of the failure. A method whose contract wants no text has just E_FAIL.
class MethodFailure : public std::exception {
public:
    explicit MethodFailure(const char* rest) noexcept : rest_(rest) {}
    const char* what() const noexcept override { return rest_; }

private:
    const char* rest_;
};

// There is no image, or it has no pixels that may be touched.
class NoImage : public MethodFailure {
public:
    NoImage() noexcept : MethodFailure("no image.") {}
};

// The same of an image that was passed in.
class NoSourceImage : public MethodFailure {
public:
    NoSourceImage() noexcept : MethodFailure("no source image.") {}
};

// A result without a text: what somebody's interface answered, E_POINTER for a null pointer.
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

// For calls on interfaces: S_OK and S_FALSE are returned, a failure is raised. Demand() makes it E_FAIL, as any
// internal failure; PassOn() keeps the result, where the contract says so (regions, bitmaps and histograms that
// processing calls). A text that the callee has reported stays reported.
inline HRESULT Demand(HRESULT result) {
    if (FAILED(result)) throw FailedResult(E_FAIL);
    return result;
}
inline HRESULT PassOn(HRESULT result) {
    if (FAILED(result)) throw FailedResult(result);
    return result;
}

}  // namespace orlix
