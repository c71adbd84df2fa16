#include "frames/frame_formats.hpp"

#include <algorithm>
#include <iterator>

namespace orlix {

namespace {

constexpr FrameFormat kFormats[] = {
    {PF_Mono8, FrameSamples::Bytes, Packing::Words16, 8},
    {PF_Mono10, FrameSamples::Packed, Packing::Words10, 10},
    {PF_Mono12, FrameSamples::Packed, Packing::Words12, 12},
    {PF_Mono14, FrameSamples::Packed, Packing::Words14, 14},
    {PF_Mono16, FrameSamples::Packed, Packing::Words16, 16},
    {PF_Mono10p, FrameSamples::Packed, Packing::Lsb10, 10},
    {PF_Mono12p, FrameSamples::Packed, Packing::Lsb12, 12},
    {PF_Mono10Packed, FrameSamples::Packed, Packing::Pairs10, 10},
    {PF_Mono12Packed, FrameSamples::Packed, Packing::Pairs12, 12},
    {PF_BayerRG8, FrameSamples::Bytes, Packing::Words16, 8, FilterOrder::RG},
    {PF_BayerGB8, FrameSamples::Bytes, Packing::Words16, 8, FilterOrder::GB},
    {PF_BayerGR8, FrameSamples::Bytes, Packing::Words16, 8, FilterOrder::GR},
    {PF_BayerBG8, FrameSamples::Bytes, Packing::Words16, 8, FilterOrder::BG},
    {PF_BayerRG10, FrameSamples::Packed, Packing::Words10, 10, FilterOrder::RG},
    {PF_BayerGB10, FrameSamples::Packed, Packing::Words10, 10, FilterOrder::GB},
    {PF_BayerGR10, FrameSamples::Packed, Packing::Words10, 10, FilterOrder::GR},
    {PF_BayerBG10, FrameSamples::Packed, Packing::Words10, 10, FilterOrder::BG},
    {PF_BayerRG12, FrameSamples::Packed, Packing::Words12, 12, FilterOrder::RG},
    {PF_BayerGB12, FrameSamples::Packed, Packing::Words12, 12, FilterOrder::GB},
    {PF_BayerGR12, FrameSamples::Packed, Packing::Words12, 12, FilterOrder::GR},
    {PF_BayerBG12, FrameSamples::Packed, Packing::Words12, 12, FilterOrder::BG},
    {PF_BayerRG16, FrameSamples::Packed, Packing::Words16, 16, FilterOrder::RG},
    {PF_BayerGB16, FrameSamples::Packed, Packing::Words16, 16, FilterOrder::GB},
    {PF_BayerGR16, FrameSamples::Packed, Packing::Words16, 16, FilterOrder::GR},
    {PF_BayerBG16, FrameSamples::Packed, Packing::Words16, 16, FilterOrder::BG},
    {PF_BayerRG10p, FrameSamples::Packed, Packing::Lsb10, 10, FilterOrder::RG},
    {PF_BayerGB10p, FrameSamples::Packed, Packing::Lsb10, 10, FilterOrder::GB},
    {PF_BayerGR10p, FrameSamples::Packed, Packing::Lsb10, 10, FilterOrder::GR},
    {PF_BayerBG10p, FrameSamples::Packed, Packing::Lsb10, 10, FilterOrder::BG},
    {PF_BayerRG12p, FrameSamples::Packed, Packing::Lsb12, 12, FilterOrder::RG},
    {PF_BayerGB12p, FrameSamples::Packed, Packing::Lsb12, 12, FilterOrder::GB},
    {PF_BayerGR12p, FrameSamples::Packed, Packing::Lsb12, 12, FilterOrder::GR},
    {PF_BayerBG12p, FrameSamples::Packed, Packing::Lsb12, 12, FilterOrder::BG},
    {PF_BayerRG10Packed, FrameSamples::Packed, Packing::Pairs10, 10, FilterOrder::RG},
    {PF_BayerGB10Packed, FrameSamples::Packed, Packing::Pairs10, 10, FilterOrder::GB},
    {PF_BayerGR10Packed, FrameSamples::Packed, Packing::Pairs10, 10, FilterOrder::GR},
    {PF_BayerBG10Packed, FrameSamples::Packed, Packing::Pairs10, 10, FilterOrder::BG},
    {PF_BayerRG12Packed, FrameSamples::Packed, Packing::Pairs12, 12, FilterOrder::RG},
    {PF_BayerGB12Packed, FrameSamples::Packed, Packing::Pairs12, 12, FilterOrder::GB},
    {PF_BayerGR12Packed, FrameSamples::Packed, Packing::Pairs12, 12, FilterOrder::GR},
    {PF_BayerBG12Packed, FrameSamples::Packed, Packing::Pairs12, 12, FilterOrder::BG},
    {PF_RGB8, FrameSamples::Triples, Packing::Words16, 8},
    {PF_BGR8, FrameSamples::Triples, Packing::Words16, 8},
    {PF_RGB8_Planar, FrameSamples::Planes, Packing::Words16, 8},
};

}  // namespace

const FrameFormat* FindFrameFormat(LONG code) {
    const auto found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                    [&](const FrameFormat& format) { return static_cast<LONG>(format.code) == code; });
    return found == std::end(kFormats) ? nullptr : found;
}

}  // namespace orlix
