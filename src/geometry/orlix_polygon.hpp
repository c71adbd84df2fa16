// The component class of polygons. The interface is documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include <span>
#include <vector>

#include "component/object.hpp"
#include "geometry/outline.hpp"

class OrlixPolygon final : public orlix::Object<OrlixPolygon, IPolygon> {
public:
    // For use inside the library.
    static orlix::ComPtr<OrlixPolygon> Of(std::vector<orlix::Point> vertices);

    STDMETHODIMP Create(LONG numberOfVertices, SVertice* vertices) noexcept override;
    STDMETHODIMP Smooth(double tolerance, IPolygon** value) noexcept override;
    STDMETHODIMP get_NumberOfVertices(LONG* value) noexcept override;
    STDMETHODIMP get_Vertices(SVertice** value) noexcept override;
    STDMETHODIMP get_Area(double* value) noexcept override;
    STDMETHODIMP get_Perimeter(double* value) noexcept override;
    STDMETHODIMP get_PerimeterEquivalentRadius(double* value) noexcept override;
    STDMETHODIMP get_Diameter(double* value) noexcept override;
    STDMETHODIMP get_Circularity(double* value) noexcept override;
    STDMETHODIMP get_DistanceFromPoint(double xReference, double yReference, double* value) noexcept override;
    STDMETHODIMP get_SubtendedAngle(double xReference, double yReference, double* value) noexcept override;
    STDMETHODIMP GetCentroid(double* xCentroid, double* yCentroid) noexcept override;
    STDMETHODIMP GetDiameter(double* x1, double* y1, double* x2, double* y2, double* diameter) noexcept override;
    STDMETHODIMP GetDistancesFromPoint(double xReference, double yReference, double* xNearest, double* yNearest,
                                       double* nearestDistance, double* xFarthest, double* yFarthest,
                                       double* farthestDistance) noexcept override;
    STDMETHODIMP RobustCircleFit(double goodVerticeProbability, double* xCenter, double* yCenter,
                                 double* radius) noexcept override;
    STDMETHODIMP ConvexHull(IPolygon** value) noexcept override;
    STDMETHODIMP GetBounds(double* left, double* top, double* right, double* bottom) noexcept override;

private:
    // Evaluates one measurement; *out is 0 until its value is known.
    template <class Measurement>
    HRESULT Measure(double* out, const Measurement& measurement) noexcept;
    // A new polygon with the chosen vertices.
    orlix::ComPtr<OrlixPolygon> Chosen(const std::vector<uint32_t>& indices) const;

    // SVertice has the layout of Point, so get_Vertices hands out this array.
    std::vector<orlix::Point> vertices_;
};
