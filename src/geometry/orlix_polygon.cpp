#include "geometry/orlix_polygon.hpp"

#include <cstddef>
#include <initializer_list>
#include <utility>

#include "geometry/circle_fit.hpp"

using namespace orlix;

static_assert(sizeof(SVertice) == sizeof(Point) && offsetof(SVertice, m_dX) == offsetof(Point, x) &&
              offsetof(SVertice, m_dY) == offsetof(Point, y));

namespace {

void RequireZeroed(std::initializer_list<double*> outputs) {
    for (double* const out : outputs) Require(out);
    for (double* const out : outputs) *out = 0;
}

}  // namespace

ComPtr<OrlixPolygon> OrlixPolygon::Of(std::vector<Point> vertices) {
    auto polygon = Make();
    polygon->vertices_ = std::move(vertices);
    return polygon;
}

ComPtr<OrlixPolygon> OrlixPolygon::Chosen(const std::vector<uint32_t>& indices) const {
    std::vector<Point> vertices;
    vertices.reserve(indices.size());
    for (const uint32_t index : indices) vertices.push_back(vertices_[index]);
    return Of(std::move(vertices));
}

template <class Measurement>
HRESULT OrlixPolygon::Measure(double* out, const Measurement& measurement) noexcept {
    return Guarded([&] {
        RequireZeroed({out});
        *out = measurement(Outline(vertices_));
    });
}

STDMETHODIMP OrlixPolygon::Create(LONG lNumberOfVertices, SVertice* Vertices) noexcept {
    return Guarded([&] {
        if (lNumberOfVertices < 1)
            throw Failure("IPolygon::Create: polygon must be created with at least one vertice.");
        std::vector<Point> vertices(static_cast<size_t>(lNumberOfVertices));
        if (Vertices)
            for (size_t i = 0; i < vertices.size(); ++i) vertices[i] = {Vertices[i].m_dX, Vertices[i].m_dY};
        vertices_ = std::move(vertices);
    });
}

STDMETHODIMP OrlixPolygon::Smooth(double Tolerance, IPolygon** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = nullptr;
        *hVal = Chosen(Simplify(vertices_, Tolerance)).Detach();
    });
}

STDMETHODIMP OrlixPolygon::get_NumberOfVertices(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = static_cast<LONG>(vertices_.size());
    });
}

STDMETHODIMP OrlixPolygon::get_Vertices(SVertice** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = vertices_.empty() ? nullptr : reinterpret_cast<SVertice*>(vertices_.data());
    });
}

STDMETHODIMP OrlixPolygon::get_Area(double* hVal) noexcept { return Measure(hVal, Area); }
STDMETHODIMP OrlixPolygon::get_Perimeter(double* hVal) noexcept { return Measure(hVal, Perimeter); }
STDMETHODIMP OrlixPolygon::get_PerimeterEquivalentRadius(double* hVal) noexcept {
    return Measure(hVal, [](Outline outline) { return Perimeter(outline) * 0.15915494309189535; });
}
STDMETHODIMP OrlixPolygon::get_Diameter(double* hVal) noexcept {
    return Measure(hVal, [](Outline outline) { return DiameterOf(outline).length; });
}
STDMETHODIMP OrlixPolygon::get_Circularity(double* hVal) noexcept { return Measure(hVal, Circularity); }

STDMETHODIMP OrlixPolygon::get_DistanceFromPoint(double XReference, double YReference, double* hVal) noexcept {
    return Guarded([&] {
        RequireZeroed({hVal});
        const Point point = {XReference, YReference};
        *hVal = DistancesFrom(point, vertices_).nearestDistance;
        return Encloses(vertices_, point) ? S_FALSE : S_OK;
    });
}

STDMETHODIMP OrlixPolygon::get_SubtendedAngle(double XReference, double YReference, double* hVal) noexcept {
    return Measure(hVal, [&](Outline outline) { return SubtendedAngle(outline, {XReference, YReference}); });
}

STDMETHODIMP OrlixPolygon::GetCentroid(double* XCentroid, double* YCentroid) noexcept {
    return Guarded([&] {
        RequireZeroed({XCentroid, YCentroid});
        const Point centroid = SignedCentroid(vertices_);
        *XCentroid = centroid.x;
        *YCentroid = centroid.y;
    });
}

STDMETHODIMP OrlixPolygon::GetDiameter(double* X1, double* Y1, double* X2, double* Y2, double* Diameter) noexcept {
    return Guarded([&] {
        RequireZeroed({X1, Y1, X2, Y2, Diameter});
        const auto [i, j, length] = DiameterOf(vertices_);
        if (!(length > 0)) return;
        *X1 = vertices_[i].x;
        *Y1 = vertices_[i].y;
        *X2 = vertices_[j].x;
        *Y2 = vertices_[j].y;
        *Diameter = length;
    });
}

STDMETHODIMP OrlixPolygon::GetDistancesFromPoint(double XReference, double YReference, double* XNearest,
                                                 double* YNearest, double* NearestDistance, double* XFarthest,
                                                 double* YFarthest, double* FarthestDistance) noexcept {
    return Guarded([&] {
        RequireZeroed({XNearest, YNearest, NearestDistance, XFarthest, YFarthest, FarthestDistance});
        const Point point = {XReference, YReference};
        const ExtremeDistances extremes = DistancesFrom(point, vertices_);
        const auto put = [&](int64_t index, double* x, double* y) {
            if (index < 0) return;
            *x = vertices_[static_cast<size_t>(index)].x;
            *y = vertices_[static_cast<size_t>(index)].y;
        };
        put(extremes.nearest, XNearest, YNearest);
        put(extremes.farthest, XFarthest, YFarthest);
        *NearestDistance = extremes.nearestDistance;
        *FarthestDistance = extremes.farthestDistance;
        return Encloses(vertices_, point) ? S_FALSE : S_OK;
    });
}

STDMETHODIMP OrlixPolygon::RobustCircleFit(double GoodVerticeProbability, double* XCenter, double* YCenter,
                                           double* Radius) noexcept {
    return Guarded([&] {
        RequireZeroed({XCenter, YCenter, Radius});
        const std::optional<Circle> circle = RobustCircle(vertices_, GoodVerticeProbability);
        if (!circle) return S_FALSE;
        *XCenter = circle->center.x;
        *YCenter = circle->center.y;
        *Radius = circle->radius;
        return S_OK;
    });
}

STDMETHODIMP OrlixPolygon::ConvexHull(IPolygon** hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = nullptr;
        *hVal = (vertices_.size() < 3 ? Of(vertices_) : Chosen(orlix::ConvexHull(vertices_))).Detach();
    });
}

STDMETHODIMP OrlixPolygon::GetBounds(double* Left, double* Top, double* Right, double* Bottom) noexcept {
    return Guarded([&] {
        RequireZeroed({Left, Top, Right, Bottom});
        const Bounds bounds = BoundsOf(vertices_);
        *Left = bounds.left;
        *Top = bounds.top;
        *Right = bounds.right;
        *Bottom = bounds.bottom;
    });
}
