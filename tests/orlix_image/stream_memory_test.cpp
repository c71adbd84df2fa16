// Loading, saving and attaching when memory runs out, at each allocation in turn.
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "orlix_image/orlix_image.hpp"
#include "support/refusing.hpp"

namespace {

int64_t allowed = -1;  // allocations before one fails; below 0 all succeed
int64_t living = 0;

void* Take(std::size_t size, std::size_t alignment) {
    if (allowed >= 0 && allowed-- == 0) return nullptr;
    // The address that was got stands before the one that is handed out.
    const std::size_t room = alignment + sizeof(void*);
    auto* const got = static_cast<unsigned char*>(std::malloc(size + room));
    if (!got) return nullptr;
    ++living;
    auto address = reinterpret_cast<std::uintptr_t>(got) + room;
    address -= address % alignment;
    reinterpret_cast<void**>(address)[-1] = got;
    return reinterpret_cast<void*>(address);
}
void* TakeOrThrow(std::size_t size) {
    void* const memory = Take(size, 16);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void GiveBack(void* memory) noexcept {
    if (!memory) return;
    --living;
    std::free(static_cast<void**>(memory)[-1]);
}

}  // namespace

void* operator new(std::size_t size) { return TakeOrThrow(size); }
void* operator new[](std::size_t size) { return TakeOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Take(size, 16); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Take(size, 16); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Take(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { GiveBack(memory); }
void operator delete[](void* memory) noexcept { GiveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { GiveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { GiveBack(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { GiveBack(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { GiveBack(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { GiveBack(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { GiveBack(memory); }

namespace orlix::test {
namespace {

// Takes what is written into room that is there already.
class FixedStream final : public Refusing<IStream> {
public:
    FixedStream() { bytes.reserve(1 << 16); }
    virtual ~FixedStream() = default;

    std::string bytes;
    size_t at = 0;

    STDMETHODIMP QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 1; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
    STDMETHODIMP Read(void* to, ULONG size, ULONG* read) noexcept override {
        *read = static_cast<ULONG>(bytes.copy(static_cast<char*>(to), size, at));
        at += *read;
        return S_OK;
    }
    STDMETHODIMP Write(const void* from, ULONG size, ULONG* written) noexcept override {
        bytes.append(static_cast<const char*>(from), size);
        *written = size;
        return S_OK;
    }
};

ComPtr<OrlixImage> Furnished(LONG type) {
    auto image = OrlixImage::Make();
    EXPECT_EQ(S_OK, image->Create(300, 200, 2, type, 1));
    unsigned char bytes[100] = {};
    image->put_Description(Text("a description that is too long to stand in the string itself"));
    image->PutTextEntry(Text("Author"), Text("a text that is too long to stand in the string itself"));
    image->PutBinaryEntry(Text("Profile"), 100, bytes);
    image->PutMicronsPerPixel(1, 2);
    return image;
}

// Runs the call with ever more memory until it succeeds, and returns how often it failed.
template <class Call, class Check>
int FailuresUntilDone(Call call, Check check) {
    for (int failures = 0;; ++failures) {
        const int64_t before = living;
        allowed = failures;
        const HRESULT result = call();
        allowed = -1;
        if (result == S_OK) return failures;
        EXPECT_EQ(E_FAIL, result) << failures;
        EXPECT_EQ(before, living) << "after failure " << failures;
        check();
        if (::testing::Test::HasFailure()) return -1;
    }
}

TEST(StreamMemory, SavingFailsBeforeAnythingIsWritten) {
    const auto image = Furnished(DT_WORD);
    FixedStream stream;
    const int failures = FailuresUntilDone([&] { return image->Save(&stream, TRUE); },
                                           [&] {
                                               EXPECT_EQ("", stream.bytes);
                                               EXPECT_EQ(S_OK, image->IsDirty());
                                           });
    EXPECT_GE(failures, 3);
    EXPECT_EQ(S_FALSE, image->IsDirty());
}

// Bands, width, height and type.
using Shape = std::array<LONG, 4>;
Shape ShapeOf(const ComPtr<OrlixImage>& image) {
    Shape s = {};
    EXPECT_EQ(S_OK, image->Dimensions(&s[0], &s[1], &s[2]));
    EXPECT_EQ(S_OK, image->DataType(0, &s[3]));
    return s;
}

TEST(StreamMemory, LoadingFailsWithoutATrace) {
    const auto image = Furnished(DT_WORD);
    FixedStream stream;
    ASSERT_EQ(S_OK, image->Save(&stream, FALSE));
    for (const LONG typeBefore : {DT_BYTE, DT_WORD}) {
        const auto target = OrlixImage::Make();
        ASSERT_EQ(S_OK, target->Create(3, 2, 1, typeBefore, 1));
        const auto load = [&] {
            stream.at = 0;
            return target->Load(&stream);
        };
        EXPECT_GE(FailuresUntilDone(load, [&] { EXPECT_EQ((Shape{1, 3, 2, typeBefore}), ShapeOf(target)); }), 8);
        FixedStream again;
        ASSERT_EQ(S_OK, target->Save(&again, FALSE));
        EXPECT_EQ(stream.bytes, again.bytes);
    }
}

// Creations by attaching keep the old image, whatever the types are.
TEST(AttachingMemory, FailsWithoutATrace) {
    for (const LONG type : {DT_BYTE, DT_WORD, DT_Float}) {
        const auto image = Furnished(DT_WORD);
        std::vector<uint8_t> buffer(64 * 64 * 4, 7);
        const auto attach = [&] { return image->ImagePixels::AttachBuffer(buffer.data(), 64, 64, 1, type, 0); };
        const auto unchanged = [&] {
            EXPECT_EQ((Shape{2, 300, 200, DT_WORD}), ShapeOf(image));
            EXPECT_EQ(S_OK, image->Invert());
        };
        EXPECT_GE(FailuresUntilDone(attach, unchanged), 2);
    }
}

}  // namespace
}  // namespace orlix::test
