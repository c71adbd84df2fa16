// Conversion between the surfaces of the logic and the records of the contract.
#pragma once

#include <orlix/orlix.h>

#include "fits/hemisphere.hpp"
#include "fits/surface_polynomial.hpp"

namespace orlix {

// Write() does not change m_lSize, which belongs to the caller.
inline void Write(const SurfacePolynomial& surface, SPlanarFit& fit) {
    fit.m_dAverage = surface.average;
    fit.m_dAlpha = surface.k[MonomialIndex(1, 0)];
    fit.m_dBeta = surface.k[MonomialIndex(0, 1)];
    fit.m_dGamma = surface.k[0];
}
inline SurfacePolynomial Read(const SPlanarFit& fit) {
    return {{fit.m_dGamma, fit.m_dBeta, fit.m_dAlpha}, fit.m_dAverage};
}

inline void Write(const SurfacePolynomial& surface, SBiquadraticFit& fit) {
    const auto& k = surface.k;
    fit = {fit.m_lSize, surface.average, k[0], k[1], k[2], k[3], k[4], k[5]};
}
inline SurfacePolynomial Read(const SBiquadraticFit& fit) {
    return {{fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4, fit.m_dK5}, fit.m_dAverage};
}

inline void Write(const SurfacePolynomial& surface, SBicubicFit& fit) {
    const auto& k = surface.k;
    fit = {fit.m_lSize, surface.average, k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], k[8], k[9]};
}
inline SurfacePolynomial Read(const SBicubicFit& fit) {
    return {
        {fit.m_dK0, fit.m_dK1, fit.m_dK2, fit.m_dK3, fit.m_dK4, fit.m_dK5, fit.m_dK6, fit.m_dK7, fit.m_dK8, fit.m_dK9},
        fit.m_dAverage};
}

inline void Write(const AveragedHemisphere& surface, SHemisphereFit& fit) {
    const Hemisphere& h = surface.hemisphere;
    fit = {fit.m_lSize, surface.average, h.xCenter, h.yCenter, h.zCenter, h.zScale, h.radius};
}
inline AveragedHemisphere Read(const SHemisphereFit& fit) {
    return {{fit.m_dXCenter, fit.m_dYCenter, fit.m_dZCenter, fit.m_dZScale, fit.m_dRadius}, fit.m_dAverage};
}

inline void Write(const AveragedHemisphere& surface, SAngledHemisphereFit& fit) {
    const Hemisphere& h = surface.hemisphere;
    fit = {fit.m_lSize, surface.average, h.xCenter, h.yCenter, h.zCenter, h.zScale, h.radius, h.alpha, h.beta};
}
inline AveragedHemisphere Read(const SAngledHemisphereFit& fit) {
    return {{fit.m_dXCenter, fit.m_dYCenter, fit.m_dZCenter, fit.m_dZScale, fit.m_dRadius, fit.m_dAlpha, fit.m_dBeta},
            fit.m_dAverage};
}

}  // namespace orlix
