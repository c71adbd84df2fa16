// Polygons and structuring elements as clients see them.
#include <cmath>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr char kPolygon[] = "Orlix.Polygon.1", kElement[] = "orlix.StructuringElement.1";
constexpr double kLargest = std::numeric_limits<double>::max();

ComPtr<IPolygon> PolygonOf(std::vector<SVertice> vertices) {
    auto polygon = CreateObject<IPolygon>("Orlix.Polygon");
    Check(polygon->Create(static_cast<LONG>(vertices.size()), vertices.data()), polygon);
    return polygon;
}

using Vertices = std::vector<std::pair<double, double>>;

Vertices VerticesOf(const ComPtr<IPolygon>& polygon) {
    SVertice* const vertices = Get(polygon, &IPolygon::get_Vertices);
    Vertices out;
    for (LONG i = 0; i < Get(polygon, &IPolygon::get_NumberOfVertices); ++i)
        out.emplace_back(vertices[i].m_dX, vertices[i].m_dY);
    return out;
}

TEST(PolygonContract, MeasuresASquareEitherWayRound) {
    for (const bool reversed : {false, true}) {
        std::vector<SVertice> vertices = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
        if (reversed) std::swap(vertices[1], vertices[3]);
        const auto polygon = PolygonOf(vertices);
        EXPECT_EQ(4, Get(polygon, &IPolygon::get_Area));
        EXPECT_EQ(8, Get(polygon, &IPolygon::get_Perimeter));
        EXPECT_EQ(8 * 0.15915494309189535, Get(polygon, &IPolygon::get_PerimeterEquivalentRadius));
        EXPECT_EQ(2 * std::sqrt(2.0), Get(polygon, &IPolygon::get_Diameter));
        EXPECT_EQ(1, Get(polygon, &IPolygon::get_Circularity));
        const double sign = reversed ? -1 : 1;
        EXPECT_EQ(std::tuple(sign, sign), Get(polygon, &IPolygon::GetCentroid));
        EXPECT_EQ(std::tuple(0, 0, 2, 2, 2 * std::sqrt(2.0)), Get(polygon, &IPolygon::GetDiameter));

        double nearest = 0, xn, yn, xf, yf, farthest;
        EXPECT_EQ(S_FALSE, polygon->get_DistanceFromPoint(1, 1, &nearest));
        EXPECT_EQ(std::sqrt(2.0), nearest);
        EXPECT_EQ(std::tuple(2, reversed ? 2 : 0, std::sqrt(10.0), 0, 0, std::sqrt(26.0)),
                  Get(polygon, &IPolygon::GetDistancesFromPoint, 5, 1));
        EXPECT_EQ(S_FALSE, polygon->GetDistancesFromPoint(1, 0.5, &xn, &yn, &nearest, &xf, &yf, &farthest));
        EXPECT_DOUBLE_EQ(90, Get(polygon, &IPolygon::get_SubtendedAngle, 3, 1));
    }
}

TEST(PolygonContract, NoVertexOneVertexAndNullVertices) {
    const auto empty = CreateObject<IPolygon>(kPolygon);
    const auto one = PolygonOf({{3, 4}});
    for (const auto& [polygon, vertices] : {std::pair{empty, LONG{0}}, {one, LONG{-5}}})
        EXPECT_TRUE(Fails(polygon->Create(vertices, nullptr),
                          "IPolygon::Create: polygon must be created with at least one vertice.", kPolygon));
    EXPECT_EQ(nullptr, Get(empty, &IPolygon::get_Vertices));
    for (const auto get : {&IPolygon::get_Area, &IPolygon::get_Perimeter, &IPolygon::get_Diameter})
        EXPECT_EQ(0, Get(empty, get));
    EXPECT_TRUE(std::isnan(Get(empty, &IPolygon::get_Circularity)));
    EXPECT_EQ(std::tuple(kLargest, kLargest, -kLargest, -kLargest), Get(empty, &IPolygon::GetBounds));
    double x = 1, y = 1, radius = 1;
    EXPECT_EQ(S_FALSE, empty->RobustCircleFit(0.9, &x, &y, &radius));
    EXPECT_EQ(std::tuple(0, 0, 0), std::tuple(x, y, radius));
    EXPECT_TRUE(VerticesOf(Get(empty, &IPolygon::ConvexHull)).empty());
    EXPECT_EQ((Vertices{{3, 4}}), VerticesOf(one));
    EXPECT_EQ(VerticesOf(one), VerticesOf(Get(one, &IPolygon::ConvexHull)));
    EXPECT_EQ(0, std::get<2>(Get(one, &IPolygon::GetDiameter)));
    EXPECT_EQ(S_OK, one->Create(1, nullptr));
    EXPECT_EQ(std::tuple(0, 0, 0, 0), Get(one, &IPolygon::GetBounds));
}

TEST(PolygonContract, HullAndSmoothedOutlineAreNewPolygons) {
    const auto polygon = PolygonOf({{0, 0}, {1, 0}, {2, 0}, {2, 2}, {1, 1.25}, {0, 2}, {0, 1}});
    const auto hull = Get(polygon, &IPolygon::ConvexHull);
    EXPECT_EQ((Vertices{{2, 2}, {2, 0}, {0, 0}, {0, 2}}), VerticesOf(hull));
    EXPECT_EQ((Vertices{{0, 0}, {2, 0}, {2, 2}, {1, 1.25}, {0, 2}}), VerticesOf(Get(polygon, &IPolygon::Smooth, 0.5)));
    EXPECT_EQ(7u, VerticesOf(polygon).size());
    EXPECT_EQ(1u, ReferencesOf(hull.get()));
}

TEST(StructuringElementContract, KeepsItsElementsInOrderAndTheBytesUpToDate) {
    const auto element = CreateObject<IStructuringElement>(kElement);
    LONG l, t, r, b;
    SElement *first = nullptr, *end = nullptr;
    EXPECT_EQ(nullptr, Get(element, &IStructuringElement::get_Elements));
    EXPECT_EQ(S_FALSE, element->GetExtent(&l, &t, &r, &b));
    EXPECT_EQ((std::vector<LONG>{0, 0, 0, 0}), (std::vector<LONG>{l, t, r, b}));
    EXPECT_EQ(S_OK, element->get_BinaryElements(3, &first, &end));
    EXPECT_EQ(first, end);

    EXPECT_EQ(S_OK, element->AddElement(3, 0));
    EXPECT_EQ(S_OK, element->AddElement(4, 0));
    const auto bytes = [&](LONG bit) {
        EXPECT_EQ(S_OK, element->get_BinaryElements(bit, &first, &end));
        std::vector<std::vector<LONG>> out;
        for (; first != end; ++first) out.push_back({first->m_lX, first->m_lY, first->m_lOffset, first->m_yValue});
        return out;
    };
    using Bytes = std::vector<std::vector<LONG>>;
    EXPECT_EQ((Bytes{{0, 0, 0, 0x18}}), bytes(0));
    EXPECT_EQ((Bytes{{1, 0, 0, 0xC0}}), bytes(5));
    EXPECT_EQ(S_OK, element->Translate(2, -1));
    EXPECT_EQ((Bytes{{0, -1, 0, 0x06}}), bytes(0));
    EXPECT_EQ(std::tuple(5, -1, 6, -1), Get(element, &IStructuringElement::GetExtent));
    for (const LONG bit : {LONG{-1}, LONG{8}, kLeast})
        EXPECT_TRUE(FailsSilently(element->get_BinaryElements(bit, &first, &end), E_INVALIDARG));
    EXPECT_EQ(nullptr, end);

    EXPECT_EQ(S_OK, element->CreateDisk(1));
    EXPECT_EQ(5, Get(element, &IStructuringElement::get_NumberOfElements));
    EXPECT_EQ((Bytes{{0, -1, 0, 0x40}, {0, 0, 0, 0xE0}, {0, 1, 0, 0x40}}), bytes(1));
    for (const double radius : {0.0, -1.0, std::nan("")})
        EXPECT_TRUE(
            Fails(element->CreateDisk(radius), "IStructuringElement::CreateDisk: radius must be positive", kElement));
    EXPECT_TRUE(Fails(element->CreateDisk(2311),
                      "IStructuringElement::CreateDisk: the disk has more than 16777216 pixels.", kElement));
    EXPECT_EQ(5, Get(element, &IStructuringElement::get_NumberOfElements));
    EXPECT_EQ(S_OK, element->ResetElements());
    EXPECT_TRUE(bytes(1).empty());
}

}  // namespace
}  // namespace orlix::testing
