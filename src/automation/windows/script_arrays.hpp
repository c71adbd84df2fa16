// Arrays of scripts (SAFEARRAY) for reading, and new ones for results. In memory the first index runs fastest.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "automation/windows/script_values.hpp"

namespace orlix::automation {

// Access to the elements of an array that a script gave. It stays locked meanwhile, so it cannot be freed or get
// another size.
class GivenArray {
public:
    // One or two dimensions that begin with 0. No array, or one of an impossible kind: BadValue with
    // DISP_E_TYPEMISMATCH; other lower bounds: DISP_E_BADINDEX.
    GivenArray(const VARIANT& value, LCID locale);
    ~GivenArray();
    GivenArray(const GivenArray&) = delete;
    GivenArray& operator=(const GivenArray&) = delete;

    VARTYPE type() const { return type_; }
    int dimensions() const { return dimensions_; }
    size_t size(int dimension) const { return sizes_[static_cast<size_t>(dimension)]; }  // 1 beyond the last one
    size_t count() const { return sizes_[0] * sizes_[1]; }
    const void* data() const { return data_; }

    // An element, counted in the order of memory.
    double Real(size_t index) const;
    LONG Number(size_t index) const;

private:
    VARIANT Element(size_t index) const;

    SAFEARRAY* array_ = nullptr;
    LCID locale_;
    VARTYPE type_ = VT_EMPTY;
    int dimensions_ = 0;
    std::array<size_t, 2> sizes_ = {1, 1};
    size_t elementSize_ = 0;
    const uint8_t* data_ = nullptr;
};

// All elements of a vector of bytes, or numbers from 0 to 255.
std::vector<uint8_t> ReadBytes(const VARIANT& value, LCID locale);

// A new array of numbers, zero at first, which goes with the value that it becomes in the end.
class NewArray {
public:
    NewArray(VARTYPE type, size_t size) : NewArray(type, size, 1, 1) {}
    NewArray(VARTYPE type, size_t first, size_t second) : NewArray(type, first, second, 2) {}
    ~NewArray();
    NewArray(const NewArray&) = delete;
    NewArray& operator=(const NewArray&) = delete;

    // Not for arrays without elements.
    template <class T>
    T* data() noexcept {
        return static_cast<T*>(array_->pvData);
    }
    VARIANT Detach() noexcept;

private:
    // Throws std::bad_alloc.
    NewArray(VARTYPE type, size_t first, size_t second, UINT dimensions);

    SAFEARRAY* array_;
    VARTYPE type_;
};

}  // namespace orlix::automation
