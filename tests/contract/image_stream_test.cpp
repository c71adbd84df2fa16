// Images in streams as clients use them: what survives, what is reported, streams that fail, and the flags. The bytes
// are tested in tests/files.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::ElementsAre;

constexpr HRESULT kShortWrite = static_cast<HRESULT>(0x80030103);
constexpr HRESULT kStreamFailure = static_cast<HRESULT>(0x8003001E);

// A client's stream, whose calls can be made to go wrong. It lies about its size, and knows no other call.
class ClientStream final : public CountedObject<Refusing<IStream>> {
public:
    static ComPtr<ClientStream> Make(std::string content = {}) {
        auto stream = MakeCounted<ClientStream>();
        stream->bytes = std::move(content);
        return stream;
    }

    std::string bytes;
    size_t at = 0;
    int failingCall = -1;      // counted over reads and writes
    ULONG piece = 0xFFFFFFFF;  // read at a time
    int shortWrite = -1;       // the write that stores one byte less than asked
    LONG claimedTooMuch = 0;   // added to what a read says
    std::function<void()> onCall;

    STDMETHODIMP Read(void* to, ULONG size, ULONG* read) noexcept override {
        if (Fails()) return kStreamFailure;
        const size_t step = std::min<size_t>({size, piece, bytes.size() - at});
        std::memcpy(to, bytes.data() + at, step);
        at += step;
        *read = static_cast<ULONG>(step) + static_cast<ULONG>(claimedTooMuch);
        return step < size ? S_FALSE : S_OK;
    }
    STDMETHODIMP Write(const void* from, ULONG size, ULONG* written) noexcept override {
        const bool isShort = calls_ == shortWrite;
        if (Fails()) return kStreamFailure;
        *written = isShort ? size - 1 : size;
        bytes.append(static_cast<const char*>(from), *written);
        return S_OK;
    }
    STDMETHODIMP Stat(STATSTG* stat, DWORD) noexcept override {
        *stat = {};
        stat->cbSize.QuadPart = std::numeric_limits<uint64_t>::max();
        return S_OK;
    }

private:
    bool Fails() {
        if (onCall) onCall();
        return calls_++ == failingCall;
    }
    int calls_ = 0;
};

std::string Saved(const Image& image) {
    const auto stream = ClientStream::Make();
    Check(image.persist->Save(stream.get(), FALSE), image.persist);
    EXPECT_GE(Get(image.persist, &IPersistStreamInitEx::GetSizeMax).QuadPart, stream->bytes.size());
    return stream->bytes;
}

// All that a stream keeps, away from what it is at first.
template <class Pixel>
TypedImage<Pixel> FurnishedImage(LONG bands) {
    const auto image = NewImage<Pixel>(7, 4, bands);
    for (LONG band = 0; band < bands; ++band)
        image.Fill([value = static_cast<uint32_t>(band + 1)](LONG, LONG) mutable { return value *= 2654435761u; },
                   band);
    Check(image->SetCoords({1, 2, {3, 4, 5, 6}}));
    Check(image->put_Description(Text("d\xC3\xA9")));
    Check(image.file->PutMicronsPerPixel(0.1, 0.3));
    Check(image.process->PutLuminanceRange(3, 77));
    if (sizeof(Pixel) > 1) Check(image.process->put_NumberOfBins(1000));
    Check(image.process->put_BandToProcess(bands - 1));
    Check(image.display->PutDisplayRange(5, 99));
    Check(image.display->put_BandToDisplay(bands > 1 ? 1 : LONG{BI_AllBands}));
    Check(image.display->put_ColorTable(200, 0x123456));
    Check(image.entries->PutTextEntry(Text("Author"), Text("\xE9\x9D\xA2")));
    unsigned char bytes[] = {0, 255, 7};
    Check(image.entries->PutBinaryEntry(Text("Profile"), 3, bytes));
    Check(image.entries->PutBinaryEntry(Text("Empty"), 0, nullptr));
    return image;
}

// What an image answers, but for its pixels.
std::string StateOf(const Image& image) {
    std::ostringstream out;
    const auto [bands, width, height] = image.size();
    const auto [x, y] = Get(image.file, &IImageFile::GetMicronsPerPixel);
    out << Get(image, &IImageVPA::DataType, 0) << ' ' << bands << ' ' << width << 'x' << height << " map";
    for (const double entry : Entries(Get(image, &IImageVPA::GetCoords))) out << ' ' << entry;
    out << ' ' << TextOf(image, &IImageVPAExPlus::get_Description) << ' ' << x << ' ' << y << " process "
        << image.LuminanceRange().first << ' ' << image.LuminanceRange().second << ' '
        << Get(image.process, &IImageProcess::get_NumberOfBins) << ' '
        << Get(image.process, &IImageProcess::get_BandToProcess) << " display " << image.DisplayRange().first << ' '
        << image.DisplayRange().second << ' ' << Get(image.display, &IDisplayProcess::get_BandToDisplay) << std::hex
        << ' ' << Get(image.display, &IDisplayProcess::get_ColorTable, 200) << std::dec << " entries";
    Text keyword, text;
    LONG size = 0;
    for (LONG i = 0; i < Get(image.entries, &IImageEntries::get_NumberOfTextEntries); ++i) {
        Check(image.entries->GetTextEntry(i, keyword.Out(), text.Out()));
        out << ' ' << keyword.Utf8() << '=' << text.Utf8();
    }
    for (LONG i = 0; i < Get(image.entries, &IImageEntries::get_NumberOfBinaryEntries); ++i) {
        Check(image.entries->GetBinaryEntry(i, keyword.Out(), &size));
        std::vector<unsigned char> bytes(static_cast<size_t>(size) + 1);
        Check(image.entries->ReadBinaryEntry(i, 0, size, bytes.data()));
        out << ' ' << keyword.Utf8() << '=';
        for (LONG k = 0; k < size; ++k) out << int{bytes[static_cast<size_t>(k)]} << ',';
    }
    return out.str();
}

// The image from a file that it was saved to.
Image ThroughFile(const Image& image, const char* extension) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("orlix-" + std::to_string(Get(image, &IImageVPA::DataType, 0)) + extension);
    const Text name(path.string());
    Image loaded;
    Check(image.file->SaveToFile(name, IFF_ByExtension), image.file);
    const HRESULT result = loaded.file->LoadFromFile(name, 0);
    std::filesystem::remove(path);
    Check(result, loaded.file);
    return loaded;
}

template <class Pixel>
class ImageStreams : public ::testing::Test {};
TYPED_TEST_SUITE(ImageStreams, PixelTypes);

TYPED_TEST(ImageStreams, KeepEverything) {
    for (const LONG bands : {1, 3}) {
        const auto image = FurnishedImage<TypeParam>(bands);
        const std::string bytes = Saved(image);
        const TypedImage<TypeParam> loaded;
        const auto stream = ClientStream::Make(bytes);
        if (bands == 1) stream->piece = 1;
        ASSERT_EQ(S_OK, loaded.persist->Load(stream.get()));
        EXPECT_EQ(bytes.size(), stream->at);
        std::ostringstream state;
        state << kTypeOf<TypeParam> << ' ' << bands << " 7x4 map 1 2 3 4 5 6 d\xC3\xA9 0.1 0.3 process 3 77 "
              << (sizeof(TypeParam) > 1 ? 1000 : 256) << ' ' << bands - 1 << " display 5 99 "
              << (bands > 1 ? 1 : LONG{BI_AllBands}) << " 123456 entries Author=\xE9\x9D\xA2 Profile=0,255,7, Empty=";
        EXPECT_EQ(state.str(), StateOf(loaded));
        for (LONG band = 0; band < bands; ++band) EXPECT_EQ(image.values(band), loaded.values(band));
        EXPECT_EQ(1, Get(loaded.display, &IDisplayProcess::get_DisplayDirty));
        EXPECT_EQ(bytes, Saved(loaded));
        if (sizeof(TypeParam) <= 2) {
            EXPECT_EQ(bytes, Saved(ThroughFile(image, ".png")));
        }
    }
}

TYPED_TEST(ImageStreams, TakePixelsFromAttachedBuffersAndLoadIntoTheirOwn) {
    std::vector<TypeParam> buffer(2 * 3 * 4 / sizeof(TypeParam), TypeParam{7});  // two bands, three rows of four bytes
    const Image image;
    const LONG width = static_cast<LONG>(4 / sizeof(TypeParam));
    ASSERT_EQ(S_OK, image->AttachBuffer(buffer.data(), width, 3, 2, kTypeOf<TypeParam>, 0));
    const std::string bytes = Saved(image);
    std::fill(buffer.begin(), buffer.end(), TypeParam{99});
    ASSERT_EQ(S_OK, image.persist->Load(ClientStream::Make(bytes).get()));
    EXPECT_EQ(TypeParam{7}, PixelsOf<TypeParam>(image, 1).back());
    EXPECT_EQ(TypeParam{99}, buffer.back());
}

TEST(ImageStream, LoadsOnceAndReloadsAnyTime) {
    const std::string bytes = Saved(ImageOf<uint8_t>(2, {1, 2})), other = Saved(ImageOf<float>(1, {0.5f}));
    const Image image;
    const auto& persist = image.persist;
    const auto load = [&](const std::string& from) { return persist->Load(ClientStream::Make(from).get()); };
    EXPECT_TRUE(Fails(load("qelf"), "IPersistStreamInit::Load: not an image stream."));
    EXPECT_EQ(S_OK, load(bytes));  // a failed load does not count
    EXPECT_TRUE(FailsSilently(load(bytes), E_UNEXPECTED));
    EXPECT_TRUE(FailsSilently(persist->InitNew(), E_UNEXPECTED));
    EXPECT_EQ(S_OK, persist->ReLoad(ClientStream::Make(other).get()));
    EXPECT_THAT(PixelsOf<float>(image), ElementsAre(0.5f));
    EXPECT_TRUE(Fails(persist->ReLoad(ClientStream::Make(bytes.substr(0, 2000)).get()),
                      "IPersistStreamInit::Load: the stream ends early."));
    EXPECT_EQ(other, Saved(image));
    EXPECT_EQ(ClassOf("Orlix.Image"), Get(persist, &IPersist::GetClassID));

    const auto fresh = Image().persist;
    EXPECT_EQ(S_OK, fresh->InitNew());
    EXPECT_TRUE(FailsSilently(fresh->InitNew(), E_UNEXPECTED));
    EXPECT_TRUE(FailsSilently(fresh->Load(ClientStream::Make(bytes).get()), E_UNEXPECTED));
    EXPECT_EQ(S_OK, fresh->ReLoad(ClientStream::Make(bytes).get()));
}

TEST(ImageStream, WithoutPixelsOrPointersIsRefused) {
    const Image image;
    const auto& persist = image.persist;
    const auto stream = ClientStream::Make();
    ULARGE_INTEGER size = {};
    EXPECT_EQ(S_FALSE, persist->IsDirty());
    EXPECT_TRUE(Fails(persist->Save(stream.get(), TRUE), "IPersistStreamInit::Save: no image."));
    EXPECT_TRUE(Fails(persist->GetSizeMax(&size), "IPersistStreamInit::GetSizeMax: no image."));
    image->AttachBuffer(reinterpret_cast<void*>(uintptr_t{16}), 4, 4, 1, DT_BYTE, 0);
    EXPECT_TRUE(FailsSilently(persist->Save(stream.get(), TRUE)));
    EXPECT_EQ("", stream->bytes);
}

TEST(ImageStream, IsDirtyFromAnyChangeOfWhatItKeepsUntilSavedOrLoaded) {
    const auto image = FurnishedImage<uint16_t>(2);
    const auto& persist = image.persist;
    const auto stream = ClientStream::Make();
    EXPECT_EQ(S_OK, persist->IsDirty());
    ASSERT_EQ(S_OK, persist->Save(stream.get(), FALSE));
    EXPECT_EQ(S_OK, persist->IsDirty());
    const auto& process = image.process;
    const auto& display = image.display;
    const auto& entries = image.entries;
    unsigned char byte = 1;
    const std::function<HRESULT()> changes[] = {
        [&] { return process->Invert(); },
        [&] { return process->put_BandToProcess(0); },
        [&] { return process->put_NumberOfBins(99); },
        [&] { return process->PutLuminanceRange(1, 2); },
        [&] { return process->SnapLuminanceRange(0, 0, 0); },
        [&] { return image->SetCoords({}); },
        [&] { return image->put_Description(nullptr); },
        [&] { return image.file->PutMicronsPerPixel(0, 0); },
        [&] { return display->put_BandToDisplay(0); },
        [&] { return display->PutDisplayRange(1, 2); },
        [&] { return display->SnapDisplayRange(0, 0, 0); },
        [&] { return display->put_ColorTable(0, 1); },
        [&] { return display->EqualizeColorTable(); },
        [&] { return entries->PutTextEntry(Text("a"), Text("b")); },
        [&] { return entries->RemoveTextEntry(0); },
        [&] { return entries->PutBinaryEntry(Text("a"), 1, &byte); },
        [&] { return entries->RemoveBinaryEntry(0); },
        [&] { return image->CreateFromSubImage(image.get(), 0, 0, 0, 1, 1); },
        [&] { return image->Create(2, 2, 1, DT_WORD, 1); },
    };
    int number = 0;
    for (const auto& change : changes) {
        ASSERT_EQ(S_OK, persist->Save(stream.get(), TRUE));
        ASSERT_EQ(S_FALSE, persist->IsDirty()) << number;
        ASSERT_EQ(S_OK, change()) << number;
        ASSERT_EQ(S_OK, persist->IsDirty()) << number;
        ++number;
    }
    ASSERT_EQ(S_OK, persist->ReLoad(ClientStream::Make(Saved(image)).get()));
    EXPECT_EQ(S_FALSE, persist->IsDirty());
    const auto failing = ClientStream::Make();
    failing->failingCall = 1;
    ASSERT_EQ(S_OK, process->Invert());
    EXPECT_EQ(kStreamFailure, persist->Save(failing.get(), TRUE));
    EXPECT_EQ(S_OK, persist->IsDirty());
}

TEST(ImageStream, PassesOnFailuresOfTheStream) {
    const auto image = FurnishedImage<uint8_t>(1);
    const std::string bytes = Saved(image);
    int call = 0;
    for (HRESULT result = E_FAIL; FAILED(result); ++call) {
        const auto stream = ClientStream::Make();
        stream->failingCall = call;
        result = image.persist->Save(stream.get(), TRUE);
        ASSERT_TRUE(result == S_OK || FailsSilently(result, kStreamFailure)) << call;
        const auto narrow = ClientStream::Make();
        narrow->shortWrite = call;
        EXPECT_EQ(FAILED(result) ? kShortWrite : S_OK, image.persist->Save(narrow.get(), FALSE)) << call;
    }
    EXPECT_GT(call, 1);

    const auto target = ImageOf<uint16_t>(1, {4711});
    const std::string before = Saved(target);
    call = 0;
    for (HRESULT result = E_FAIL; FAILED(result); ++call) {
        ASSERT_EQ(before, Saved(target));
        const auto stream = ClientStream::Make(bytes);
        stream->failingCall = call;
        stream->piece = 100;
        result = target.persist->Load(stream.get());
        ASSERT_TRUE(result == S_OK || FailsSilently(result, kStreamFailure)) << call;
    }
    EXPECT_GT(call, 30);
    EXPECT_EQ(bytes, Saved(target));

    const auto liar = ClientStream::Make(bytes);
    liar->claimedTooMuch = 1;
    EXPECT_TRUE(FailsSilently(target.persist->ReLoad(liar.get())));
    EXPECT_EQ(bytes, Saved(target));
}

TEST(ImageStream, MayCallTheImageThatItIsSavedOrLoadedBy) {
    const auto image = FurnishedImage<uint8_t>(3);
    const std::string bytes = Saved(image);
    const auto stream = ClientStream::Make();
    stream->onCall = [&] { image->Create(1, 1, 1, DT_Float, 1); };
    ASSERT_EQ(S_OK, image.persist->Save(stream.get(), FALSE));
    EXPECT_EQ(bytes, stream->bytes);
    const auto source = ClientStream::Make(bytes);
    source->onCall = [&] { image->Create(1, 1, 1, DT_WORD, 1); };
    ASSERT_EQ(S_OK, image.persist->Load(source.get()));
    EXPECT_EQ(bytes, Saved(image));
}

TEST(ImageStream, KeepsTheRegionAndTheTableOfAnImageOfTheSameType) {
    const auto image = ImageOf<uint8_t>(1, {1});
    const auto region = NewRegion();
    image.SetRegion(region);
    ASSERT_EQ(S_OK, image.process->put_Table(3, 9));
    ASSERT_EQ(S_OK, image.persist->Load(ClientStream::Make(Saved(ImageOf<uint8_t>(2, {1, 2}))).get()));
    EXPECT_EQ(region.get(), Get(image.process, &IImageProcess::get_RegionOfInterest).get());
    EXPECT_EQ(9, Get(image.process, &IImageProcess::get_Table, 3));
}

TEST(ImageStream, GoesThroughTheStreamsOfTheSystem) {
    const auto image = FurnishedImage<uint16_t>(1);
    const auto memory = CreateMemoryStream();
    for (int i = 0; i < 2; ++i) ASSERT_EQ(S_OK, image.persist->Save(memory.get(), FALSE));  // one behind the other
    SeekStart(memory);
    for (int i = 0; i < 2; ++i) {
        const Image loaded;
        ASSERT_EQ(S_OK, loaded.persist->Load(memory.get()));
        EXPECT_EQ(Saved(image), Saved(loaded));
    }
    const Image end;
    EXPECT_TRUE(Fails(end.persist->Load(memory.get()), "IPersistStreamInit::Load: not an image stream."));

    const std::filesystem::path path = std::filesystem::temp_directory_path() / u8"orlix \u9762.stream";
    const std::u8string name = path.u8string();
    const std::string utf8(name.begin(), name.end());
    ASSERT_EQ(S_OK, image.persist->Save(CreateFileStream(utf8).get(), FALSE));
    ASSERT_EQ(S_OK, end.persist->Load(OpenFileStream(utf8).get()));
    EXPECT_EQ(Saved(image), Saved(end));
    EXPECT_EQ(Saved(image).size(), std::filesystem::file_size(path));
    std::filesystem::remove(path);
    EXPECT_THROW(OpenFileStream(utf8), Error);
}

TEST(ImageEntries, AreChecked) {
    const auto image = NewImage<uint8_t>(1, 1);
    const auto& entries = image.entries;
    unsigned char bytes[] = {1, 2, 3}, got[3] = {};
    Text keyword;
    LONG number = 9;
    ASSERT_EQ(S_OK, entries->PutBinaryEntry(Text("a"), 3, bytes));
    ASSERT_EQ(S_OK, entries->PutBinaryEntry(Text("b"), 1, bytes));
    ASSERT_EQ(S_OK, entries->PutBinaryEntry(Text("a"), 2, bytes + 1));
    EXPECT_EQ(2, Get(entries, &IImageEntries::get_NumberOfBinaryEntries));
    ASSERT_EQ(S_OK, entries->ReadBinaryEntry(0, 0, 2, got));
    EXPECT_THAT(got, ElementsAre(2, 3, 0));
    ASSERT_EQ(S_OK, entries->ReadBinaryEntry(0, 1, 1, got));
    EXPECT_THAT(got, ElementsAre(3, 3, 0));
    EXPECT_EQ(S_OK, entries->ReadBinaryEntry(0, 2, 0, got));
    const auto refuses = [](HRESULT result, const std::string& text) {
        EXPECT_TRUE(Fails(result, "IImageEntries::" + text)) << text;
    };
    for (const auto& [offset, size] : {std::pair<LONG, LONG>{-1, 1}, {0, -1}, {1, 2}, {kMost, kMost}, {3, 0}})
        refuses(entries->ReadBinaryEntry(0, offset, size, got), "ReadBinaryEntry: the bytes are out of range.");
    for (const LONG index : {-1, 2}) {
        refuses(entries->GetBinaryEntry(index, keyword.Out(), &number), "GetBinaryEntry: Index is out of range.");
        refuses(entries->ReadBinaryEntry(index, 0, 0, got), "ReadBinaryEntry: Index is out of range.");
        refuses(entries->RemoveBinaryEntry(index), "RemoveBinaryEntry: Index is out of range.");
        refuses(entries->RemoveTextEntry(index), "RemoveTextEntry: Index is out of range.");
    }
    refuses(entries->PutBinaryEntry(Text(" a"), 1, bytes), "PutBinaryEntry: invalid keyword.");
    refuses(entries->PutBinaryEntry(Text("a"), -1, nullptr), "PutBinaryEntry: Size must not be negative.");
    ASSERT_EQ(S_OK, entries->RemoveBinaryEntry(0));
    ASSERT_EQ(S_OK, entries->GetBinaryEntry(0, keyword.Out(), &number));
    EXPECT_EQ("b", keyword.Utf8());
}

// ------------------------------------------------------------------------------------------- files inside of streams

TEST(ImageFileInStream, HasTheBytesOfTheFile) {
    const auto path = std::filesystem::temp_directory_path() / "orlix-in-stream";
    const Text name(path.string());
    for (const ImageFileFormat format : {IFF_PNG, IFF_PGM, IFF_BMP, IFF_TIFF, IFF_JPEG}) {
        SCOPED_TRACE(format);
        const auto image = FurnishedImage<uint8_t>(1);
        ASSERT_EQ(S_OK, image.file->SaveToFile(name, format));
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const auto stream = ClientStream::Make("before");
        ASSERT_EQ(S_OK, image.file->SaveToStream(stream.get(), format));
        EXPECT_EQ("before" + bytes, stream->bytes);

        stream->at = 6;
        stream->piece = format == IFF_PNG ? 1 : 100;
        const Image loaded, other;
        ASSERT_EQ(S_OK, loaded.file->LoadFromStream(stream.get(), 0));
        ASSERT_EQ(S_OK, other.file->LoadFromFile(name, 0));
        EXPECT_EQ(StateOf(other), StateOf(loaded));
        EXPECT_EQ(PixelsOf<uint8_t>(other), PixelsOf<uint8_t>(loaded));
    }
    std::filesystem::remove(path);
}

TEST(ImageFileInStream, ReportsWhatGoesWrongAndChangesNothing) {
    const auto image = ImageOf<uint8_t>(2, {1, 2, 3, 4});
    const auto good = ClientStream::Make();
    ASSERT_EQ(S_OK, image.file->SaveToStream(good.get(), IFF_PNG));
    const auto load = [&](const ComPtr<ClientStream>& stream, LONG page = 0) {
        return image.file->LoadFromStream(stream.get(), page);
    };
    const auto stream = [&](const std::string& bytes) { return ClientStream::Make(bytes); };
    EXPECT_TRUE(Raises(load(stream("")), "IImageVPAEx::CreateFromFile: unknown file format."));
    EXPECT_TRUE(Raises(load(stream(good->bytes.substr(0, good->bytes.size() - 1))),
                       "IImageVPAEx::CreateFromPng: the file is truncated."));
    EXPECT_TRUE(Raises(load(stream(good->bytes), 1), "IImageFile::LoadFromFile: the file has no such page."));
    const auto failing = stream(good->bytes);
    failing->failingCall = 1;
    EXPECT_TRUE(FailsSilently(load(failing), kStreamFailure));
    const auto boasting = stream(good->bytes);
    boasting->claimedTooMuch = 100'000;
    EXPECT_TRUE(FailsSilently(load(boasting)));
    EXPECT_TRUE(FailsSilently(image.file->LoadFromStream(image.get(), 0), E_NOINTERFACE));
    EXPECT_TRUE(FailsSilently(image.file->SaveToStream(image.get(), IFF_PNG), E_NOINTERFACE));
    const auto full = ClientStream::Make();
    full->shortWrite = 0;
    EXPECT_TRUE(FailsSilently(image.file->SaveToStream(full.get(), IFF_PNG), kShortWrite));
    EXPECT_TRUE(
        Fails(image.file->SaveToStream(good.get(), IFF_ByExtension), "IImageFile::SaveToFile: unknown file format."));
    EXPECT_TRUE(Fails(Image().file->SaveToStream(good.get(), IFF_PNG), "IImageFile::SaveToStream: no image."));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4}), image.values());

    // A stream that puts another image in place while it is read: the file's comes last.
    const auto calling = stream(good->bytes);
    calling->onCall = [&] { Check(image->Create(1, 1, 1, DT_Float, 1), image); };
    ASSERT_EQ(S_OK, load(calling));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4}), image.values());
}

}  // namespace
}  // namespace orlix::testing
