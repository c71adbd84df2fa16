// Saving to and loading from a stream in memory, and PNG files in a temporary folder, compared with zlib alone on the
// same bytes ("zlib" compresses into an existing buffer and decompresses into existing memory).
#include <benchmark/benchmark.h>
#include <zlib.h>
#include <orlix/client.hpp>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "pictures.hpp"

namespace orlix::bench {
namespace {

void Require(int state) {
    if (state != Z_OK) throw std::runtime_error("zlib fails");
}

template <class T>
ComPtr<IImageVPAExPlus> ImageOf(const std::vector<T>& picture, int size) {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(size, size, 1, sizeof(T) == 1 ? DT_BYTE : DT_WORD, 0), image);
    const T* from = picture.data();
    for (const std::span<T> row : Rows<T>(image)) {
        std::memcpy(row.data(), from, row.size_bytes());
        from += row.size();
    }
    return image;
}

template <class T>
struct Subject {
    ComPtr<IImageVPAExPlus> image;
    ComPtr<IPersistStreamInitEx> persist = Cast<IPersistStreamInitEx>(image);
    ComPtr<IStream> stream = CreateMemoryStream();
    const std::vector<T>& picture;
    std::vector<Bytef> compressed, pixels;
    uLong compressedSize = 0;

    explicit Subject(int size) : image(ImageOf(Picture<T>(size), size)), picture(Picture<T>(size)) {
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

// zlib compresses the filtered rows of the file as the writer did: by those parameters that give the bytes of the file.
template <class T>
struct PngSubject {
    ComPtr<IImageVPAExPlus> image;
    ComPtr<IImageFile> file = Cast<IImageFile>(image);
    std::string path = (std::filesystem::temp_directory_path() / "orlix_stream_bench.png").string();
    std::vector<Bytef> compressed, filtered, buffer;
    std::pair<int, int> method;  // level, strategy

    explicit PngSubject(int size) : image(ImageOf(Picture<T>(size), size)) {
        Save();
        std::ifstream stream(path, std::ios::binary);
        const std::vector<Bytef> bytes{std::istreambuf_iterator<char>(stream), {}};
        for (size_t at = 8; at + 12 <= bytes.size();) {
            const size_t length = size_t{bytes[at]} << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
            const auto data = bytes.begin() + static_cast<ptrdiff_t>(at) + 8;
            if (std::memcmp(&bytes[at + 4], "IDAT", 4) == 0)
                compressed.insert(compressed.end(), data, data + static_cast<ptrdiff_t>(length));
            at += 12 + length;
        }
        filtered.resize((sizeof(T) * static_cast<size_t>(size) + 1) * static_cast<size_t>(size));
        Uncompress();
        for (const auto& candidate : std::to_array<std::pair<int, int>>(
                 {{6, Z_RLE}, {1, Z_DEFAULT_STRATEGY}, {5, Z_FILTERED}, {6, Z_DEFAULT_STRATEGY}})) {
            method = candidate;
            Compress();
            if (buffer == compressed) return;
        }
        throw std::runtime_error("zlib compresses otherwise than the writer does");
    }
    void Save() { Check(file->SaveToFile(Text(path), IFF_PNG), file); }
    void Load() { Check(image->CreateFromFile(Text(path)), image); }
    void Compress() {
        z_stream stream = {};
        Require(::deflateInit2(&stream, method.first, Z_DEFLATED, 15, 9, method.second));
        buffer.resize(::deflateBound(&stream, static_cast<uLong>(filtered.size())));
        stream.next_in = filtered.data();
        stream.avail_in = static_cast<uInt>(filtered.size());
        stream.next_out = buffer.data();
        stream.avail_out = static_cast<uInt>(buffer.size());
        if (::deflate(&stream, Z_FINISH) != Z_STREAM_END) throw std::runtime_error("zlib fails");
        buffer.resize(stream.total_out);
        Require(::deflateEnd(&stream));
    }
    void Uncompress() {
        uLong size = static_cast<uLong>(filtered.size());
        Require(::uncompress(filtered.data(), &size, compressed.data(), static_cast<uLong>(compressed.size())));
    }
};

template <class T, template <class> class Subject>
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
    Register<T>("save PNG", "orlix", &PngSubject<T>::Save);
    Register<T>("save PNG", "zlib", &PngSubject<T>::Compress);
    Register<T>("load PNG", "orlix", &PngSubject<T>::Load);
    Register<T>("load PNG", "zlib", &PngSubject<T>::Uncompress);
}

}  // namespace
}  // namespace orlix::bench

int main(int count, char** arguments) {
    orlix::bench::RegisterAll<uint8_t>();
    orlix::bench::RegisterAll<uint16_t>();
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
