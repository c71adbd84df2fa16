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

STDMETHODIMP OrlixPolygon::Create(LONG numberOfVertices, SVertice* vertices) noexcept {
    return Guarded([&] {
        if (numberOfVertices < 1) throw Failure("IPolygon::Create: polygon must be created with at least one vertice.");
        std::vector<Point> points(static_cast<size_t>(numberOfVertices));
        if (vertices)
            for (size_t i = 0; i < points.size(); ++i) points[i] = {vertices[i].m_dX, vertices[i].m_dY};
        vertices_ = std::move(points);
    });
}

STDMETHODIMP OrlixPolygon::Smooth(double tolerance, IPolygon** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = nullptr;
        *value = Chosen(Simplify(vertices_, tolerance)).Detach();
    });
}

STDMETHODIMP OrlixPolygon::get_NumberOfVertices(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = static_cast<LONG>(vertices_.size());
    });
}

STDMETHODIMP OrlixPolygon::get_Vertices(SVertice** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = vertices_.empty() ? nullptr : reinterpret_cast<SVertice*>(vertices_.data());
    });
}

STDMETHODIMP OrlixPolygon::get_Area(double* value) noexcept { return Measure(value, Area); }
STDMETHODIMP OrlixPolygon::get_Perimeter(double* value) noexcept { return Measure(value, Perimeter); }
STDMETHODIMP OrlixPolygon::get_PerimeterEquivalentRadius(double* value) noexcept {
    return Measure(value, PerimeterEquivalentRadius);
}
STDMETHODIMP OrlixPolygon::get_Diameter(double* value) noexcept {
    return Measure(value, [](Outline outline) { return DiameterOf(outline).length; });
}
STDMETHODIMP OrlixPolygon::get_Circularity(double* value) noexcept { return Measure(value, Circularity); }

STDMETHODIMP OrlixPolygon::get_DistanceFromPoint(double xReference, double yReference, double* value) noexcept {
    return Guarded([&] {
        RequireZeroed({value});
        const Point point = {xReference, yReference};
        *value = DistancesFrom(point, vertices_).nearestDistance;
        return Encloses(vertices_, point) ? S_FALSE : S_OK;
    });
}

STDMETHODIMP OrlixPolygon::get_SubtendedAngle(double xReference, double yReference, double* value) noexcept {
    return Measure(value, [&](Outline outline) { return SubtendedAngle(outline, {xReference, yReference}); });
}

STDMETHODIMP OrlixPolygon::GetCentroid(double* xCentroid, double* yCentroid) noexcept {
    return Guarded([&] {
        RequireZeroed({xCentroid, yCentroid});
        const Point centroid = SignedCentroid(vertices_);
        *xCentroid = centroid.x;
        *yCentroid = centroid.y;
    });
}

STDMETHODIMP OrlixPolygon::GetDiameter(double* x1, double* y1, double* x2, double* y2, double* diameter) noexcept {
    return Guarded([&] {
        RequireZeroed({x1, y1, x2, y2, diameter});
        const auto [i, j, length] = DiameterOf(vertices_);
        if (!(length > 0)) return;
        *x1 = vertices_[i].x;
        *y1 = vertices_[i].y;
        *x2 = vertices_[j].x;
        *y2 = vertices_[j].y;
        *diameter = length;
    });
}

STDMETHODIMP OrlixPolygon::GetDistancesFromPoint(double xReference, double yReference, double* xNearest,
                                                 double* yNearest, double* nearestDistance, double* xFarthest,
                                                 double* yFarthest, double* farthestDistance) noexcept {
    return Guarded([&] {
        RequireZeroed({xNearest, yNearest, nearestDistance, xFarthest, yFarthest, farthestDistance});
        const Point point = {xReference, yReference};
        const ExtremeDistances extremes = DistancesFrom(point, vertices_);
        const auto put = [&](int64_t index, double* x, double* y) {
            if (index < 0) return;
            *x = vertices_[static_cast<size_t>(index)].x;
            *y = vertices_[static_cast<size_t>(index)].y;
        };
        put(extremes.nearest, xNearest, yNearest);
        put(extremes.farthest, xFarthest, yFarthest);
        *nearestDistance = extremes.nearestDistance;
        *farthestDistance = extremes.farthestDistance;
        return Encloses(vertices_, point) ? S_FALSE : S_OK;
    });
}

STDMETHODIMP OrlixPolygon::RobustCircleFit(double goodVerticeProbability, double* xCenter, double* yCenter,
                                           double* radius) noexcept {
    return Guarded([&] {
        RequireZeroed({xCenter, yCenter, radius});
        const std::optional<Circle> circle = RobustCircle(vertices_, goodVerticeProbability);
        if (!circle) return S_FALSE;
        *xCenter = circle->center.x;
        *yCenter = circle->center.y;
        *radius = circle->radius;
        return S_OK;
    });
}

STDMETHODIMP OrlixPolygon::ConvexHull(IPolygon** value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = nullptr;
        *value = (vertices_.size() < 3 ? Of(vertices_) : Chosen(orlix::ConvexHull(vertices_))).Detach();
    });
}

STDMETHODIMP OrlixPolygon::GetBounds(double* left, double* top, double* right, double* bottom) noexcept {
    return Guarded([&] {
        RequireZeroed({left, top, right, bottom});
        const Bounds bounds = BoundsOf(vertices_);
        *left = bounds.left;
        *top = bounds.top;
        *right = bounds.right;
        *bottom = bounds.bottom;
    });
}
