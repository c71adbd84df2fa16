// Frames of cameras that become images, compared with memcpy of half of the bytes that are read and written, which
// memcpy reads and writes. The image has the size of the frame before, as when frames follow each other.
#include <benchmark/benchmark.h>
#include <orlix/client.hpp>

#include <cstring>
#include <string>
#include <vector>

#include "pictures.hpp"

namespace orlix::bench {
namespace {

// T is the pixel of the image, which has the given number of bands.
template <class T>
void Register(const std::string& name, FramePixelFormat format, FrameMosaic mosaic = FM_Keep, int bands = 1) {
    for (const int size : kSizes) {
        const auto pixels = static_cast<size_t>(size) * static_cast<size_t>(size);
        const size_t bytes = pixels * (static_cast<size_t>(format) >> 16 & 0xff) / 8;  // the code tells the bits
        const auto measure = [=](const char* who, const auto& prepare) {
            benchmark::RegisterBenchmark(Name<T>(name, size, who).c_str(), [=](benchmark::State& state) {
                auto call = prepare();
                for (auto _ : state) call();
                state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pixels));
            });
        };
        measure("frame", [=] {
            std::vector<unsigned char> buffer(bytes);
            for (size_t i = 0; i < bytes; ++i) buffer[i] = static_cast<unsigned char>(i * i >> 7);
            const auto image = CreateObject<IImageFrames>("Orlix.Image");
            return [=]() mutable {
                SFrame frame = {buffer.data(), static_cast<LONGLONG>(bytes), size, size, format, 0, 0, mosaic};
                Check(image->CreateFromFrame(&frame), image);
            };
        });
        measure("memcpy", [=] {
            const size_t moved = (bytes + pixels * sizeof(T) * static_cast<size_t>(bands)) / 2;
            return [from = std::vector<char>(moved, 1), to = std::vector<char>(moved)]() mutable {
                std::memcpy(to.data(), from.data(), from.size());
                benchmark::ClobberMemory();
            };
        });
    }
}

}  // namespace
}  // namespace orlix::bench

int main(int count, char** arguments) {
    using namespace orlix::bench;
    Register<uint8_t>("Mono8", PF_Mono8);
    Register<uint8_t>("RGB8", PF_RGB8, FM_Keep, 3);
    Register<uint8_t>("BayerRG8 to grey", PF_BayerRG8, FM_Grey);
    Register<uint8_t>("BayerRG8 to bands", PF_BayerRG8, FM_Bands, 3);
    Register<uint16_t>("Mono16", PF_Mono16);
    Register<uint16_t>("Mono12", PF_Mono12);
    Register<uint16_t>("Mono10p", PF_Mono10p);
    Register<uint16_t>("Mono12p", PF_Mono12p);
    Register<uint16_t>("Mono10Packed", PF_Mono10Packed);
    Register<uint16_t>("Mono12Packed", PF_Mono12Packed);
    Register<uint16_t>("BayerRG12p to grey", PF_BayerRG12p, FM_Grey);
    Register<uint16_t>("BayerRG12p to bands", PF_BayerRG12p, FM_Bands, 3);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
