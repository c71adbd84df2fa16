// The blobs of a bitmap, as an object of their own. The contract documents the interface.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <orlix/com_ptr.hpp>

#include "blobs/gray_measurements.hpp"
#include "blobs/labelling.hpp"
#include "blobs/shape_measurements.hpp"
#include "component/object.hpp"

class OrlixBlobs;

// No class of its own: failures are reported in the name of the bitmap.
__CRT_UUID_DECL(OrlixBlobs, 0x5fdd9a2b, 0xf56c, 0x4c60, 0x80, 0x09, 0xcc, 0x17, 0xcb, 0x4a, 0x1a, 0xf0)

class OrlixBlobs final : public orlix::Object<OrlixBlobs, IBlobs> {
public:
    // All blobs of a labelling.
    static orlix::ComPtr<OrlixBlobs> Of(orlix::Labelling&& labelling);

    STDMETHODIMP get_Count(LONG* value) noexcept override;
    STDMETHODIMP get_Width(LONG* value) noexcept override;
    STDMETHODIMP get_Height(LONG* value) noexcept override;
    STDMETHODIMP get_Connectivity(ConnectivityType* value) noexcept override;
    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override;
    STDMETHODIMP PutMicronsPerPixel(double x, double y) noexcept override;
    STDMETHODIMP get_Label(LONG index, LONG* value) noexcept override;
    STDMETHODIMP get_Parent(LONG index, LONG* value) noexcept override;
    STDMETHODIMP get_Holes(IBlobs** value) noexcept override;
    STDMETHODIMP GetBinaryMeasurements(LONG desired, LONG first, LONG count,
                                       SBinaryMeasurements* measure) noexcept override;
    STDMETHODIMP MeasureGray(IImageVPA* image, LONG band, LONG desired) noexcept override;
    STDMETHODIMP GetGrayMeasurements(LONG first, LONG count, SBlobGrayMeasurements* measure) noexcept override;
    STDMETHODIMP GetValues(SingleMeasurementType type, LONG first, LONG count, double* values) noexcept override;
    STDMETHODIMP Select(SingleMeasurementType type, double lower, double upper, IBlobs** value) noexcept override;
    STDMETHODIMP Sort(SingleMeasurementType type, LONG descending, IBlobs** value) noexcept override;
    STDMETHODIMP get_Bitmap(IBitmap** value) noexcept override;
    STDMETHODIMP get_LabelImage(IImageVPA** value) noexcept override;
    STDMETHODIMP get_Region(LONG index, IRegionOfInterest** value) noexcept override;
    STDMETHODIMP get_Outline(LONG index, OutlineType type, LONG hole, IPolygon** value) noexcept override;
    STDMETHODIMP get_LevelOutline(LONG index, IImageVPA* image, LONG band, double level, LONG hole,
                                  IPolygon** value) noexcept override;
    STDMETHODIMP GetLevelMeasurements(IImageVPA* image, LONG band, double level, LONG first, LONG count,
                                      SLevelMeasurements* measure) noexcept override;

private:
    // What a bitmap had when it was labelled: shared by everything selected from it.
    struct Found {
        explicit Found(orlix::Labelling&& found) : labelling(std::move(found)) {}

        const orlix::Components& components() const { return labelling.blobs; }
        // Built when they are first asked for.
        const orlix::Holes& holes() {
            if (!holes_) holes_ = orlix::HolesOf(components());
            return *holes_;
        }

        orlix::Labelling labelling;
        std::optional<std::vector<uint32_t>> parents;  // of holes: the labels of their blobs

    private:
        std::optional<orlix::Holes> holes_;
    };

    OrlixBlobs(std::shared_ptr<Found> found, std::vector<uint32_t> labels) noexcept
        : found_(std::move(found)), labels_(std::move(labels)) {}

    const orlix::Components& components() const { return found_->components(); }
    uint32_t LabelAt(LONG index) const;
    void RequireRange(LONG first, LONG count) const;
    std::vector<double> Values(SingleMeasurementType type, LONG first, LONG count) const;
    orlix::ComPtr<OrlixBlobs> Chosen(const std::vector<uint32_t>& indices) const;

    std::shared_ptr<Found> found_;
    std::vector<uint32_t> labels_;  // of each blob of this object
    orlix::PixelSize pixel_;
    std::vector<orlix::BlobGrayMeasurements> gray_;  // of each blob, in pixels; empty until an image is measured
};
