// Reference implementations of the moment kernels.
#include "fits/moments_kernels.hpp"

namespace orlix {

template <class T, int Degree>
void Moments_scalar(const T* pixels, size_t n, uint64_t* m) {
    for (int k = 0; k <= Degree; ++k) m[k] = 0;
    for (uint64_t i = 0; i < n; ++i) {
        uint64_t weighted = pixels[i];
        for (int k = 0; k <= Degree; ++k, weighted *= i) m[k] += weighted;
    }
}

template <int Degree>
void AddFloatMoments(const float* pixels, size_t begin, size_t n, double origin, double first, FloatMoments& m) {
    for (size_t i = begin; i < n; ++i) {
        const double t = first + 2 * static_cast<double>(i);
        double e = static_cast<double>(pixels[i]) - origin;
        for (int k = 0; k <= Degree; ++k, e *= t) m.lane[k][i % 8] += e;
    }
}

template <int Degree>
void FloatMoments_scalar(const float* pixels, size_t n, double origin, double first, FloatMoments& m) {
    for (int k = 0; k <= Degree; ++k)
        for (double& lane : m.lane[k]) lane = 0;
    AddFloatMoments<Degree>(pixels, 0, n, origin, first, m);
}

template Kernel<MomentsFn<uint8_t>> Moments_scalar<uint8_t, 1>;
template Kernel<MomentsFn<uint8_t>> Moments_scalar<uint8_t, 2>;
template Kernel<MomentsFn<uint8_t>> Moments_scalar<uint8_t, 3>;
template Kernel<MomentsFn<uint16_t>> Moments_scalar<uint16_t, 1>;
template Kernel<MomentsFn<uint16_t>> Moments_scalar<uint16_t, 2>;
template Kernel<MomentsFn<uint16_t>> Moments_scalar<uint16_t, 3>;
template Kernel<MomentsFn<uint32_t>> Moments_scalar<uint32_t, 1>;
template Kernel<MomentsFn<uint32_t>> Moments_scalar<uint32_t, 2>;
template Kernel<MomentsFn<uint32_t>> Moments_scalar<uint32_t, 3>;
template void AddFloatMoments<1>(const float*, size_t, size_t, double, double, FloatMoments&);
template void AddFloatMoments<2>(const float*, size_t, size_t, double, double, FloatMoments&);
template void AddFloatMoments<3>(const float*, size_t, size_t, double, double, FloatMoments&);
template Kernel<FloatMomentsFn> FloatMoments_scalar<1>;
template Kernel<FloatMomentsFn> FloatMoments_scalar<2>;
template Kernel<FloatMomentsFn> FloatMoments_scalar<3>;

}  // namespace orlix
