#include <windows.h>

#include <memory>

#include "geometry/orlix_shape_region_of_interest.hpp"
#include "geometry/rounding.hpp"

using namespace orlix;

namespace {

struct DeleteBrush {
    void operator()(HBRUSH brush) const { DeleteObject(brush); }
};
using Brush = std::unique_ptr<std::remove_pointer_t<HBRUSH>, DeleteBrush>;

// The device rectangle between two mapped corners. GDI excludes its right and bottom edge.
RECT Mapped(const TCoordinateMap& map, double left, double top, double right, double bottom) {
    const auto x = [&](double px, double py) {
        return RoundToInt32(map.OrgX + map.Matrix.A11 * px + map.Matrix.A12 * py);
    };
    const auto y = [&](double px, double py) {
        return RoundToInt32(map.OrgY + map.Matrix.A21 * px + map.Matrix.A22 * py);
    };
    const auto [x1, x2] = std::minmax({x(left, top), x(right, bottom)});
    const auto [y1, y2] = std::minmax({y(left, top), y(right, bottom)});
    return {x1, y1, x2, y2};
}

}  // namespace

STDMETHODIMP OrlixShapeRegionOfInterest::Render(IPictureEx* picture, void* hdcDest) noexcept {
    return Guarded([&] {
        Require(picture);
        Require(hdcDest);
        TCoordinateMap map = {};
        Demand(picture->get_PixelToDestCoords(&map));
        const Brush brush(CreateSolidBrush(color_ & 0x00ffffff));
        if (!brush) throw FailedResult(E_FAIL);

        const ShapeRegion shape = shape_;
        const Box box = shape.ShapeBox();
        for (int32_t row = std::max(box.top, 0); row <= std::min(box.bottom, shape.height() - 1); ++row) {
            const ShapeRegion::RowRuns runs = shape.Row(row);
            for (size_t i = 0; i < static_cast<size_t>(runs.count); ++i) {
                const auto [start, stop] = runs.runs[i];
                if (stop < start) continue;
                const RECT rectangle = Mapped(map, start - 0.5, row - 0.5, stop + 0.5, row + 0.5);
                if (!FillRect(static_cast<HDC>(hdcDest), &rectangle, brush.get())) throw FailedResult(E_FAIL);
            }
        }
    });
}
