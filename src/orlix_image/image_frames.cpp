#include "orlix_image/image_frames.hpp"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "frames/camera_frame.hpp"
#include "image/image_store.hpp"
#include "platform/memory_probe.hpp"

namespace orlix {

namespace {

ImageLayout LayoutOfImage(const CameraFrame& frame) {
    return MakeLayout(frame.width, frame.height, BandsOfImage(frame), TypeOfImage(frame));
}

CameraFrame Checked(const SFrame& frame) {
    if (!frame.m_pBuffer) throw Failure("IImageFrames::CreateFromFrame: no buffer.");
    const FrameFormat* const format = FindFrameFormat(frame.m_lPixelFormat);
    if (!format) throw Failure("IImageFrames::CreateFromFrame: unknown pixel format.");
    if (format->filters != FilterOrder::None && (frame.m_lMosaic < LONG{FM_Keep} || frame.m_lMosaic > LONG{FM_Bands}))
        throw Failure("IImageFrames::CreateFromFrame: a mosaic is kept, or becomes grey or bands.");
    if (frame.m_lWidth <= 0 || frame.m_lHeight <= 0)
        throw Failure("IImageFrames::CreateFromFrame: width and height must be positive.");

    CameraFrame checked = {*format, frame.m_lWidth, frame.m_lHeight, 0, frame.m_lBottomUp != 0, FM_Keep};
    if (format->filters != FilterOrder::None) checked.mosaic = static_cast<FrameMosaic>(frame.m_lMosaic);
    LayoutOfImage(checked);  // or there is none
    if (frame.m_lRowPitch != 0) {
        if (frame.m_lRowPitch < 0 || static_cast<uint64_t>(frame.m_lRowPitch) < RowBytes(checked))
            throw Failure("IImageFrames::CreateFromFrame: the row pitch is shorter than a row.");
        checked.rowPitch = static_cast<uint64_t>(frame.m_lRowPitch);
    }
    if (frame.m_llSize < 0 || static_cast<uint64_t>(frame.m_llSize) < FrameBytes(checked))
        throw Failure("IImageFrames::CreateFromFrame: the buffer is shorter than the frame.");
    if (FrameBytes(checked) > SIZE_MAX || !IsReadable(frame.m_pBuffer, static_cast<size_t>(FrameBytes(checked))))
        throw Failure("IImageFrames::CreateFromFrame: the buffer cannot be read.");
    return checked;
}

ImageProperties PropertiesOf(const CameraFrame& frame) {
    ImageProperties properties;
    const LONG bits = frame.format.bits;  // 8 and 16 are all that the type has
    if (CanBeSignificant(bits, TypeOfImage(frame))) properties.significantBits = bits;
    return properties;
}

}  // namespace

STDMETHODIMP ImageFrames::CreateFromFrame(SFrame* described) noexcept {
    return Guarded([&] {
        Require(described);
        const uint8_t* const buffer = described->m_pBuffer;
        const CameraFrame frame = Checked(*described);
        const std::span<const uint8_t> bytes(buffer, static_cast<size_t>(FrameBytes(frame)));
        const ImageLayout layout = LayoutOfImage(frame);
        core().CreateTyped(TypeOfImage(frame), [&](ImageStore& store) {
            if (store.Owns(layout) && !store.content().owned.Overlaps(bytes.data(), bytes.size())) {
                std::vector<VPAEntry> table = MakeOffsetTable(layout);
                ConvertFrame(frame, bytes, layout, store.base(0));
                return store.SamplesReplaced(std::move(table), kIdentityMap, PropertiesOf(frame));
            }
            ImageContent content =
                MakeContent(TypeOfImage(frame), frame.width, frame.height, layout.bands, Samples::Unset);
            ConvertFrame(frame, bytes, layout, content.data);
            content.properties = PropertiesOf(frame);
            store.Replace(std::move(content));
        });
    });
}

}  // namespace orlix
