// A blob as a region of interest.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>
#include <vector>

#include <orlix/com_ptr.hpp>

#include "blobs/labelling.hpp"
#include "component/object.hpp"

namespace orlix {

class RunRegion;

}  // namespace orlix

// No class of its own: failures are reported in the name of the bitmap.
__CRT_UUID_DECL(orlix::RunRegion, 0x5fdd9a2b, 0xf56c, 0x4c60, 0x80, 0x09, 0xcc, 0x17, 0xcb, 0x4a, 0x1a, 0xf0)

namespace orlix {

class RunRegion final : public Object<RunRegion, IRegionOfInterest> {
public:
    // The runs of one component, in raster order and at least one, of an image of this size.
    static ComPtr<RunRegion> Make(LONG width, LONG height, std::span<const LabelledRun> runs) {
        return ComPtr<RunRegion>::Attach(new RunRegion(width, height, runs));
    }

    STDMETHODIMP get_Width(LONG* value) noexcept override;
    STDMETHODIMP get_Height(LONG* value) noexcept override;
    STDMETHODIMP get_BoundingBox(RECT* value) noexcept override;
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override;

private:
    RunRegion(LONG width, LONG height, std::span<const LabelledRun> runs);

    LONG width_;
    LONG height_;
    RECT box_;
    std::vector<SRun> runs_;
    std::vector<uint32_t> firstRuns_;  // of each row of the box, and the number of runs
};

}  // namespace orlix
