// The component class of outlines. The interface is documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include <span>
#include <vector>

#include "component/object.hpp"
#include "geometry/outline.hpp"

class OrlixPolygon final : public orlix::Object<OrlixPolygon, IPolygon> {
public:
    // For the library's own code.
    static orlix::ComPtr<OrlixPolygon> Of(std::vector<orlix::Point> vertices);

    STDMETHODIMP Create(LONG lNumberOfVertices, SVertice* Vertices) noexcept override;
    STDMETHODIMP Smooth(double Tolerance, IPolygon** hVal) noexcept override;
    STDMETHODIMP get_NumberOfVertices(LONG* hVal) noexcept override;
    STDMETHODIMP get_Vertices(SVertice** hVal) noexcept override;
    STDMETHODIMP get_Area(double* hVal) noexcept override;
    STDMETHODIMP get_Perimeter(double* hVal) noexcept override;
    STDMETHODIMP get_PerimeterEquivalentRadius(double* hVal) noexcept override;
    STDMETHODIMP get_Diameter(double* hVal) noexcept override;
    STDMETHODIMP get_Circularity(double* hVal) noexcept override;
    STDMETHODIMP get_DistanceFromPoint(double XReference, double YReference, double* hVal) noexcept override;
    STDMETHODIMP get_SubtendedAngle(double XReference, double YReference, double* hVal) noexcept override;
    STDMETHODIMP GetCentroid(double* XCentroid, double* YCentroid) noexcept override;
    STDMETHODIMP GetDiameter(double* X1, double* Y1, double* X2, double* Y2, double* Diameter) noexcept override;
    STDMETHODIMP GetDistancesFromPoint(double XReference, double YReference, double* XNearest, double* YNearest,
                                       double* NearestDistance, double* XFarthest, double* YFarthest,
                                       double* FarthestDistance) noexcept override;
    STDMETHODIMP RobustCircleFit(double GoodVerticeProbability, double* XCenter, double* YCenter,
                                 double* Radius) noexcept override;
    STDMETHODIMP ConvexHull(IPolygon** hVal) noexcept override;
    STDMETHODIMP GetBounds(double* Left, double* Top, double* Right, double* Bottom) noexcept override;

private:
    // A measurement of one number, 0 until it is known.
    template <class Measurement>
    HRESULT Measure(double* out, const Measurement& measurement) noexcept;
    // A new polygon of some of the vertices.
    orlix::ComPtr<OrlixPolygon> Chosen(const std::vector<uint32_t>& indices) const;

    // SVertice has the layout of Point: what is handed out are these.
    std::vector<orlix::Point> vertices_;
};
