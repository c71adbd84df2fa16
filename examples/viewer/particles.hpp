// The particles of an image: found by a threshold, drawn by their outlines, and measured where somebody points.
//
// The library does the work in five steps: a histogram gives a threshold, the threshold a bitmap, the bitmap its blobs,
// and the blobs give numbers, outlines, and an image that tells which of them a pixel belongs to.
#ifndef ORLIX_EXAMPLES_PARTICLES_HPP
#define ORLIX_EXAMPLES_PARTICLES_HPP

#include <orlix/client.hpp>

#include <windows.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

class Particles {
public:
    // Darker, or else brighter, than the threshold that separates both best. Nothing changes when that fails, as it
    // does with colour images.
    void Find(const orlix::ComPtr<IImageVPAExPlus>& image, bool dark) {
        const auto process = orlix::Cast<IImageProcess>(image);
        Particles found;
        // The histogram divides this range, which would otherwise be that of the pixel type.
        orlix::Check(process->SnapLuminanceRange(0, 0, FALSE), process);
        orlix::ComPtr<IHistogram> histogram;
        orlix::Check(process->get_Histogram(histogram.Out()), process);
        double threshold = 0;
        orlix::Check(histogram->AutoThresholdMinimizeVariance(0, 0, &threshold), histogram);

        orlix::ComPtr<IBitmap> below;
        constexpr double kDarkest = -std::numeric_limits<double>::infinity();
        orlix::Check(process->Threshold(kDarkest, threshold, dark ? TRUE : FALSE, below.Out()), process);
        const auto bitmap = orlix::Cast<IBitmapProcess>(below);
        orlix::ComPtr<IBlobs> all;
        orlix::Check(bitmap->FindBlobs(CT_8, all.Out()), bitmap);

        constexpr double kSmallest = 10;  // pixels; what is smaller may be noise
        orlix::Check(
            all->Select(SMT_PixelCount, kSmallest, std::numeric_limits<double>::infinity(), found.blobs_.Out()), all);
        orlix::Check(found.blobs_->MeasureGray(image.get(), 0, GEMT_GrayStatistics), found.blobs_);
        orlix::Check(found.blobs_->get_LabelImage(found.labels_.Out()), found.blobs_);
        orlix::Check(found.blobs_->get_Count(&found.count_), found.blobs_);
        for (LONG i = 0; i < found.count_; ++i) found.outlines_.push_back(OutlineOf(found.blobs_, i));
        *this = std::move(found);
    }

    // The one that holds a pixel, given by real coordinates: pixel (x, y) reaches half a pixel to either side.
    void Select(double x, double y) {
        selected_ = -1;
        if (!blobs_) return;
        const orlix::Rows<uint32_t> labels(labels_);
        const double column = std::floor(x + 0.5), row = std::floor(y + 0.5);
        if (column < 0 || row < 0 || column >= labels.width() || row >= labels.height()) return;
        // 0 where there is none, else one more than its index.
        selected_ = static_cast<LONG>(labels[static_cast<LONG>(row)][static_cast<size_t>(column)]) - 1;
    }

    // Of the particle that is selected, or else how many there are; empty before any were looked for.
    std::wstring Numbers() const {
        if (!blobs_) return {};
        if (selected_ < 0) return std::to_wstring(count_) + (count_ == 1 ? L" particle" : L" particles");
        SBinaryMeasurements shape = {};
        SBlobGrayMeasurements gray = {};
        orlix::Check(blobs_->GetBinaryMeasurements(BEMT_Size | BEMT_Perimeter | BEMT_Feret, selected_, 1, &shape),
                     blobs_);
        orlix::Check(blobs_->GetGrayMeasurements(selected_, 1, &gray), blobs_);
        wchar_t text[300];
        swprintf(text, std::size(text),
                 L"Particle %ld of %ld, label %ld\n"
                 L"Area %.0f pixels\n"
                 L"Equivalent diameter %.2f\n"
                 L"Perimeter %.2f\n"
                 L"Feret %.2f to %.2f\n"
                 L"Mean grey %.2f",
                 selected_ + 1, count_, shape.m_lLabel, shape.m_dArea, 2 * shape.m_dEquivalentRadius,
                 shape.m_dPerimeter, shape.m_dFeretMinimum, shape.m_dFeretMaximum, gray.m_dGrayAverage);
        return text;
    }

    // Outlines over a picture, by the map from its pixels to the context.
    void Draw(HDC context, const TCoordinateMap& map) const {
        const HGDIOBJ before = SelectObject(context, GetStockObject(DC_PEN));
        SetDCPenColor(context, RGB(0, 200, 255));
        for (const std::vector<SVertice>& outline : outlines_) DrawOne(context, map, outline);
        if (selected_ >= 0) {
            SetDCPenColor(context, RGB(255, 255, 0));
            DrawOne(context, map, outlines_[static_cast<size_t>(selected_)]);
        }
        SelectObject(context, before);
    }

private:
    // Along the edges of the pixels, so its corners lie half a pixel beside their centres. Closed: the first corner is
    // the last one as well.
    static std::vector<SVertice> OutlineOf(const orlix::ComPtr<IBlobs>& blobs, LONG index) {
        orlix::ComPtr<IPolygon> polygon;
        orlix::Check(blobs->get_Outline(index, OT_PixelEdges, -1, polygon.Out()), blobs);
        LONG count = 0;
        SVertice* corners = nullptr;
        orlix::Check(polygon->get_NumberOfVertices(&count), polygon);
        orlix::Check(polygon->get_Vertices(&corners), polygon);
        std::vector<SVertice> outline(corners, corners + count);
        outline.push_back(outline.front());
        return outline;
    }

    static void DrawOne(HDC context, const TCoordinateMap& map, const std::vector<SVertice>& outline) {
        const TMatrix& m = map.Matrix;
        const auto rounded = [](double v) { return static_cast<LONG>(std::floor(v + 0.5)); };
        std::vector<POINT> points;
        points.reserve(outline.size());
        for (const SVertice& corner : outline)
            points.push_back({rounded(map.OrgX + m.A11 * corner.m_dX + m.A12 * corner.m_dY),
                              rounded(map.OrgY + m.A21 * corner.m_dX + m.A22 * corner.m_dY)});
        Polyline(context, points.data(), static_cast<int>(points.size()));
    }

    orlix::ComPtr<IBlobs> blobs_;  // null before any were looked for
    orlix::ComPtr<IImageVPA> labels_;
    std::vector<std::vector<SVertice>> outlines_;
    LONG count_ = 0;
    LONG selected_ = -1;
};

#endif
