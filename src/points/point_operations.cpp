#include "points/point_operations.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

#include "points/pixel_conversion.hpp"
#include "points/point_kernels.hpp"

namespace orlix {
namespace {

// The integer summand k such that p + value in double, clamped and rounded, equals clamp(p + k) for every pixel p of
// the integer type; `nullopt` when rounding in double could matter.
template <class T>
std::optional<int64_t> WholeSummand(double value) {
    // Beyond twice the type's range every sum and difference is clamped, whatever the pixel.
    const double width = 2 * static_cast<double>(kTypeMaximum<T>) + 2;
    if (value > width) return static_cast<int64_t>(width);
    if (value < -width) return -static_cast<int64_t>(width);
    // From here on |p + value| < 2^34, so adding a multiple of 2^-16, and then 0.5, does not round.
    const double rounded = std::floor(value + 0.5);
    if (std::floor(value * 0x1p16) == value * 0x1p16) return static_cast<int64_t>(rounded);
    // Otherwise there are two roundings of at most 2^-19 each; they cannot carry a fraction that is farther than that
    // from 1/2 across it.
    if (std::fabs(value - std::floor(value) - 0.5) > 0x1p-10) return static_cast<int64_t>(rounded);
    return std::nullopt;
}

// p + k or k - p clamped to [lower, upper], lower <= upper: clamps p to where the result is in range, then adds or
// subtracts.
template <class T>
PointParameters<T> Ramp(int64_t k, bool falling, T lower, T upper) {
    const int64_t least = falling ? k - upper : lower - k;
    const int64_t most = falling ? k - lower : upper - k;
    PointParameters<T> parameters;
    parameters.falling = falling;
    if (most < 0 || least > kTypeMaximum<T>) {
        // Every result is clamped to the same end.
        const bool high = (most < 0) != falling;
        parameters.falling = false;
        parameters.offset = high ? upper : lower;
        return parameters;
    }
    parameters.first = static_cast<T>(std::max<int64_t>(least, 0));
    parameters.last = static_cast<T>(std::min<int64_t>(most, kTypeMaximum<T>));
    parameters.offset = static_cast<T>(k);
    return parameters;
}

// The ramp equal to the table, if there is one.
std::optional<PointParameters<uint8_t>> RampOf(const uint8_t (&table)[256]) {
    PointParameters<uint8_t> ramp;
    const auto [least, most] = std::minmax_element(table, table + 256);
    ramp.falling = table[0] > table[255];
    if (*least == *most) {
        ramp.offset = table[0];
    } else {
        const auto steps = [&](int i) { return table[i] != table[i + 1]; };
        int first = 0;
        while (!steps(first)) ++first;
        int last = 255;
        while (!steps(last - 1)) --last;
        ramp.first = static_cast<uint8_t>(first);
        ramp.last = static_cast<uint8_t>(last);
        ramp.offset = static_cast<uint8_t>(ramp.falling ? table[first] + first : table[first] - first);
    }
    uint8_t pixels[256];
    for (int i = 0; i < 256; ++i) pixels[i] = static_cast<uint8_t>(i);
    Ramp_scalar(pixels, 256, ramp);
    if (!std::equal(pixels, pixels + 256, table)) return std::nullopt;
    return ramp;
}

}  // namespace

// 8 bits: the results of the definition for all 256 values form a table, which is then applied the fastest way.
template <class T>
PointOperation<T> PointOperation<T>::Tabulated(Fn definition, PointParameters<T> parameters) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        for (int i = 0; i < 256; ++i) parameters.table[i] = static_cast<T>(i);
        T table[256];
        std::copy_n(parameters.table, 256, table);
        definition(table, 256, parameters);
        if (const auto ramp = RampOf(table)) return {Choose(kRamp<T>), *ramp};
        std::copy_n(table, 256, parameters.table);
        return {Choose(kLookUp), parameters};
    } else {
        return {definition, parameters};
    }
}

template <class T>
PointOperation<T> PointOperation<T>::Sum(const PointParameters<T>& parameters) {
    if constexpr (!kIsFloat<T>)
        if (parameters.lower <= parameters.upper)
            if (const auto k = WholeSummand<T>(parameters.value))
                return {Choose(kRamp<T>), Ramp<T>(*k, parameters.falling, parameters.lower, parameters.upper)};
    if constexpr (std::is_same_v<T, uint8_t>)
        return Tabulated(&Sum_scalar<T>, parameters);
    else
        return {Choose(kSum<T>), parameters};
}

template <class T>
PointOperation<T> PointOperation<T>::Invert(T lower, T upper) {
    PointParameters<T> parameters;
    parameters.value = static_cast<double>(lower) + static_cast<double>(upper);
    parameters.falling = true;
    parameters.lower = lower;
    parameters.upper = upper;
    if (std::isnan(parameters.value)) return Fill(lower);
    return Sum(parameters);
}

template <class T>
PointOperation<T> PointOperation<T>::Add(double value, T lower, T upper) {
    if (std::isnan(value)) return Fill(lower);
    PointParameters<T> parameters;
    parameters.value = value;
    parameters.lower = lower;
    parameters.upper = upper;
    return Sum(parameters);
}

template <class T>
PointOperation<T> PointOperation<T>::Divide(double value) {
    PointParameters<T> parameters;
    parameters.value = value;
    if constexpr (!kIsFloat<T>) {
        int exponent = 0;
        if (std::isfinite(value) && std::frexp(value, &exponent) == 0.5) {
            const int k = exponent - 1;
            parameters.shift = k < 0 ? static_cast<unsigned>(k) % 32 : static_cast<unsigned>(std::min(k, 32));
            if constexpr (std::is_same_v<T, uint8_t>)
                return Tabulated(&Shift_scalar<T>, parameters);
            else
                return {Choose(kShift<T>), parameters};
        }
    }
    if constexpr (std::is_same_v<T, uint8_t>)
        return Tabulated(&Quotient_scalar<T>, parameters);
    else
        return {Choose(kQuotient<T>), parameters};
}

template <class T>
PointOperation<T> PointOperation<T>::Fill(T value) {
    PointParameters<T> parameters;
    parameters.offset = value;
    return {Choose(kFill<T>), parameters};
}

template <>
PointOperation<uint8_t> PointOperation<uint8_t>::LookUp(const uint8_t (&table)[256]) {
    if (const auto ramp = RampOf(table)) return {Choose(kRamp<uint8_t>), *ramp};
    PointParameters<uint8_t> parameters;
    std::copy_n(table, 256, parameters.table);
    return {Choose(kLookUp), parameters};
}

template class PointOperation<uint8_t>;
template class PointOperation<uint16_t>;
template class PointOperation<uint32_t>;
template class PointOperation<float>;

}  // namespace orlix
