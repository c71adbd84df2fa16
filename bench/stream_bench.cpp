// Saving to and loading from a stream in memory, compared with zlib alone on the same bytes ("zlib" compresses into an
// existing buffer and decompresses into existing memory).
#include <benchmark/benchmark.h>
#include <zlib.h>
#include <orlix/client.hpp>

#include <cstring>

#include "pictures.hpp"

namespace orlix::bench {
namespace {

void Require(int state) {
    if (state != Z_OK) throw std::runtime_error("zlib fails");
}

template <class T>
struct Subject {
    ComPtr<IImageVPAExPlus> image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    ComPtr<IPersistStreamInitEx> persist = Cast<IPersistStreamInitEx>(image);
    ComPtr<IStream> stream = CreateMemoryStream();
    const std::vector<T>& picture;
    std::vector<Bytef> compressed, pixels;
    uLong compressedSize = 0;

    explicit Subject(int size) : picture(Picture<T>(size)) {
        Check(image->Create(size, size, 1, sizeof(T) == 1 ? DT_BYTE : DT_WORD, 0), image);
        const T* from = picture.data();
        for (const std::span<T> row : Rows<T>(image)) {
            std::memcpy(row.data(), from, row.size_bytes());
            from += row.size();
        }
        pixels.resize(picture.size() * sizeof(T));
        compressed.resize(::compressBound(static_cast<uLong>(pixels.size())));
        Save();
        Compress();
    }
    void Save() {
        SeekStart(stream);
        Check(persist->Save(stream.get(), FALSE), persist);
    }
    void Load() {
        SeekStart(stream);
        Check(persist->ReLoad(stream.get()), persist);
    }
    void Compress() {
        compressedSize = static_cast<uLong>(compressed.size());
        Require(::compress(compressed.data(), &compressedSize, reinterpret_cast<const Bytef*>(picture.data()),
                           static_cast<uLong>(pixels.size())));
    }
    void Uncompress() {
        uLong size = static_cast<uLong>(pixels.size());
        Require(::uncompress(pixels.data(), &size, compressed.data(), compressedSize));
    }
};

template <class T>
void Register(const std::string& operation, const std::string& who, void (Subject<T>::*call)()) {
    for (const int size : kSizes)
        benchmark::RegisterBenchmark(Name<T>(operation, size, who).c_str(), [=](benchmark::State& state) {
            Subject<T> subject(size);
            for (auto _ : state) (subject.*call)();
            state.SetItemsProcessed(state.iterations() * size * size);
        })->MinTime(1.5);  // memory costs extra when the system hands it out for the first time
}

template <class T>
void RegisterAll() {
    Register<T>("save", "orlix", &Subject<T>::Save);
    Register<T>("save", "zlib", &Subject<T>::Compress);
    Register<T>("load", "orlix", &Subject<T>::Load);
    Register<T>("load", "zlib", &Subject<T>::Uncompress);
}

}  // namespace
}  // namespace orlix::bench

int main(int count, char** arguments) {
    orlix::bench::RegisterAll<uint8_t>();
    orlix::bench::RegisterAll<uint16_t>();
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
