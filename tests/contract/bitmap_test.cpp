// Bitmaps as clients see them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "contract/support.hpp"

using namespace orlix;
using orlix::testing::Fails;
using orlix::testing::FailsSilently;
using orlix::testing::Get;
using orlix::testing::ReferencesOf;
using orlix::testing::TakeReported;

namespace {

constexpr char kSource[] = "Orlix.Bitmap.1";
constexpr char kLeftAboveRight[] = "IBitmapProcess::DrawHorizontalLine: left cannot be larger than right.";
constexpr char kRowOutside[] = "IBitmapProcess::GetRowPtr: row is out of bounds";
constexpr char kXOutside[] = "IBitmapProcess::GetPixelPtr: X is out of bounds";
constexpr char kYOutside[] = "IBitmapProcess::GetPixelPtr: Y is out of bounds";
constexpr LONG kMost = std::numeric_limits<LONG>::max();
constexpr LONG kLeast = std::numeric_limits<LONG>::min();

ComPtr<IBitmapProcess> NewBitmap() { return CreateObject<IBitmapProcess>("Orlix.Bitmap"); }

ComPtr<IBitmapProcess> NewBitmap(LONG width, LONG height) {
    auto bitmap = NewBitmap();
    Check(bitmap->Create(width, height, 1), bitmap);
    return bitmap;
}

BITMAP RecordOf(IBitmap& bitmap) {
    BITMAP record = {};
    EXPECT_EQ(S_OK, bitmap.get_Bitmap(&record));
    return record;
}

std::vector<uint8_t> BytesOf(IBitmap& bitmap) {
    const BITMAP record = RecordOf(bitmap);
    const auto* first = static_cast<const uint8_t*>(record.bmBits);
    return {first, first + record.bmWidthBytes * record.bmHeight};
}

// One character a pixel, '#' for 1, rows separated by '/'.
std::string Picture(IBitmap& bitmap) {
    const BITMAP record = RecordOf(bitmap);
    std::string picture;
    for (LONG y = 0; y < record.bmHeight; ++y) {
        if (y > 0) picture += '/';
        for (LONG x = 0; x < record.bmWidth; ++x) {
            LONG bit = 7;
            EXPECT_EQ(S_OK, bitmap.get_Bit(x, y, &bit));
            picture += bit == 1 ? '#' : '.';
        }
    }
    return picture;
}

// A bitmap of another component, with any record.
class ForeignBitmap final : public IBitmap {
public:
    BITMAP record = {};
    HRESULT result = S_OK;
    ULONG references = 1;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IBitmap) ? this : nullptr;
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return --references; }
    STDMETHODIMP get_Bitmap(BITMAP* hVal) noexcept override {
        *hVal = record;
        return result;
    }
    STDMETHODIMP get_Width(LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Height(LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Create(LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateFromBitmap(IBitmap*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Zero() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP One() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DrawHorizontalLine(LONG, LONG, LONG, DrawType) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DrawRectangle(LONG, LONG, LONG, LONG, DrawType) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DrawDisk(double, double, double, DrawType) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DrawLine(double, double, double, double, DrawType) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetRowPtr(LONG, unsigned char**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPixelPtr(LONG, LONG, unsigned char**, unsigned char*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Bit(LONG, LONG, LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_Bit(LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
};

// ---------------------------------------------------------------------------------------------------------- the object

TEST(BitmapContract, NullOutputsAndInputsGiveEPointerAndWriteNothing) {
    const auto bitmap = NewBitmap(9, 4);
    unsigned char* row = reinterpret_cast<unsigned char*>(8);
    unsigned char mask = 0xca;
    EXPECT_TRUE(FailsSilently(bitmap->get_Width(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->get_Height(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->CreateFromBitmap(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->get_Bitmap(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetRowPtr(99, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetWriteRowPtr(99, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetPixelPtr(0, 0, nullptr, &mask), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetPixelPtr(0, 0, &row, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetWritePixelPtr(0, 0, nullptr, &mask), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->GetWritePixelPtr(0, 0, &row, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bitmap->get_Bit(0, 0, nullptr), E_POINTER));
    EXPECT_EQ(reinterpret_cast<unsigned char*>(8), row);
    EXPECT_EQ(0xca, mask);
    EXPECT_EQ(1u, ReferencesOf(bitmap.get()));
}

TEST(BitmapContract, ANewBitmapHasNoPixels) {
    const auto bitmap = NewBitmap();
    LONG value = 7;
    EXPECT_EQ(0, Get(bitmap, &IBitmap::get_Width));
    EXPECT_EQ(0, Get(bitmap, &IBitmap::get_Height));
    EXPECT_EQ(nullptr, RecordOf(*bitmap).bmBits);
    unsigned char* row = reinterpret_cast<unsigned char*>(8);
    EXPECT_TRUE(Fails(bitmap->GetRowPtr(0, &row), kRowOutside, kSource));
    EXPECT_EQ(nullptr, row);
    EXPECT_TRUE(Fails(bitmap->put_Bit(0, 0, 1), kYOutside, kSource));
    EXPECT_EQ(S_FALSE, bitmap->get_Bit(0, 0, &value));
    EXPECT_EQ(S_FALSE, bitmap->DrawHorizontalLine(0, 0, 5, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawRectangle(0, 0, 5, 5, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(5, 5, 2, DT_On));
    EXPECT_EQ(S_OK, bitmap->DrawLine(0, 0, 5, 5, DT_On));
    EXPECT_EQ(S_OK, bitmap->Zero());
    EXPECT_EQ(S_OK, bitmap->One());
}

// ------------------------------------------------------------------------------------------------------------ creation

TEST(BitmapContract, RowsAreOfWholeWords) {
    const LONG table[][2] = {{1, 2}, {16, 2}, {17, 4}, {24, 4}};
    for (const auto& [width, bytes] : table) {
        const BITMAP record = RecordOf(*NewBitmap(width, 3));
        EXPECT_EQ(bytes, record.bmWidthBytes);
        EXPECT_EQ(0, record.bmType);
        EXPECT_EQ(width, record.bmWidth);
        EXPECT_EQ(3, record.bmHeight);
        EXPECT_EQ(1, record.bmPlanes);
        EXPECT_EQ(1, record.bmBitsPixel);
    }
}

TEST(BitmapContract, CreationTestsTheWidthFirstAndAFailureChangesNothing) {
    const auto bitmap = NewBitmap(10, 2);
    bitmap->One();
    EXPECT_TRUE(Fails(bitmap->Create(0, 0, 1), "CBITMAP::Create: width must be positive", kSource));
    EXPECT_TRUE(Fails(bitmap->Create(kLeast, 5, 1), "CBITMAP::Create: width must be positive", kSource));
    EXPECT_TRUE(Fails(bitmap->Create(5, 0, 1), "CBITMAP::Create: height must be positive", kSource));
    EXPECT_TRUE(FailsSilently(bitmap->Create(kMost, kMost, 1)));  // 2^59 bytes
    EXPECT_EQ(10, RecordOf(*bitmap).bmWidth);
    EXPECT_EQ(std::vector<uint8_t>(4, 0xff), BytesOf(*bitmap));
}

TEST(BitmapContract, CreationAnewKeepsTheOldBytesUnlessAskedToClear) {
    const auto bitmap = NewBitmap();
    ASSERT_EQ(S_OK, bitmap->Create(10, 1, 0));
    EXPECT_EQ(std::vector<uint8_t>(2, 0), BytesOf(*bitmap));
    bitmap->One();
    ASSERT_EQ(S_OK, bitmap->Create(20, 2, 0));
    EXPECT_EQ((std::vector<uint8_t>{0xff, 0xff, 0, 0, 0, 0, 0, 0}), BytesOf(*bitmap));
    ASSERT_EQ(S_OK, bitmap->Create(20, 2, -1));
    EXPECT_EQ(std::vector<uint8_t>(8, 0), BytesOf(*bitmap));
}

TEST(BitmapContract, CopiesAnotherBitmapWithItsPadding) {
    const auto source = NewBitmap(10, 2);
    source->One();
    source->put_Bit(3, 1, 0);
    const auto copy = NewBitmap(100, 100);
    EXPECT_EQ(S_OK, copy->CreateFromBitmap(source.get()));
    EXPECT_EQ("##########/###.######", Picture(*copy));
    EXPECT_EQ(BytesOf(*source), BytesOf(*copy));
    source->Zero();
    EXPECT_EQ("##########/###.######", Picture(*copy));
    EXPECT_EQ(1u, ReferencesOf(source.get()));
}

TEST(BitmapContract, ACopyOfItselfOrOfNothingChangesNothing) {
    const auto bitmap = NewBitmap(10, 2);
    bitmap->One();
    EXPECT_EQ(S_FALSE, bitmap->CreateFromBitmap(bitmap.get()));
    EXPECT_EQ(S_FALSE, bitmap->CreateFromBitmap(Cast<IBitmap>(bitmap).get()));
    EXPECT_TRUE(Fails(bitmap->CreateFromBitmap(NewBitmap().get()), "CBITMAP::Create: width must be positive", kSource));
    EXPECT_EQ("##########/##########", Picture(*bitmap));
    EXPECT_EQ(1u, ReferencesOf(bitmap.get()));
}

TEST(BitmapContract, CopiesForeignBitmapsAndRefusesImpossibleOnes) {
    const auto bitmap = NewBitmap(10, 2);
    uint8_t bytes[8] = {0x80, 0xff, 0xff, 0xff, 0x40, 0xff, 0xff, 0xff};
    ForeignBitmap foreign;
    foreign.record.bmWidth = 3;
    foreign.record.bmHeight = 2;
    foreign.record.bmWidthBytes = 4;  // of double words
    foreign.record.bmPlanes = 1;
    foreign.record.bmBitsPixel = 1;
    foreign.record.bmBits = bytes;
    EXPECT_EQ(S_OK, bitmap->CreateFromBitmap(&foreign));
    EXPECT_EQ("#../.#.", Picture(*bitmap));

    foreign.result = E_OUTOFMEMORY;
    EXPECT_TRUE(FailsSilently(bitmap->CreateFromBitmap(&foreign)));
    foreign.result = S_OK;
    foreign.record.bmHeight = -2;
    EXPECT_TRUE(Fails(bitmap->CreateFromBitmap(&foreign), "CBITMAP::Create: height must be positive", kSource));
    foreign.record.bmHeight = 2;
    foreign.record.bmBits = nullptr;
    EXPECT_TRUE(FailsSilently(bitmap->CreateFromBitmap(&foreign)));
    EXPECT_EQ("#../.#.", Picture(*bitmap));
    EXPECT_EQ(1u, foreign.references);
}

// -------------------------------------------------------------------------------------------------------- pixel access

TEST(BitmapContract, PointersLeadToTheBitsOfThePixels) {
    const auto bitmap = NewBitmap(20, 3);
    auto* const bits = static_cast<unsigned char*>(RecordOf(*bitmap).bmBits);
    unsigned char* row = nullptr;
    unsigned char mask = 0;
    EXPECT_EQ(S_OK, bitmap->GetRowPtr(2, &row));
    EXPECT_EQ(bits + 8, row);
    EXPECT_EQ(S_OK, bitmap->GetWriteRowPtr(1, &row));
    EXPECT_EQ(bits + 4, row);
    EXPECT_EQ(S_OK, bitmap->GetPixelPtr(19, 2, &row, &mask));
    EXPECT_EQ(bits + 10, row);
    EXPECT_EQ(0x10, mask);
    EXPECT_EQ(S_OK, bitmap->GetWritePixelPtr(8, 0, &row, &mask));
    EXPECT_EQ(bits + 1, row);
    EXPECT_EQ(0x80, mask);
    *row = static_cast<unsigned char>(*row | mask);
    LONG bit = 0;
    EXPECT_EQ(S_OK, bitmap->get_Bit(8, 0, &bit));
    EXPECT_EQ(1, bit);
}

TEST(BitmapContract, PointersOutsideAreClearedAndReported) {
    const auto bitmap = NewBitmap(9, 4);
    for (const LONG y : {LONG{-1}, LONG{4}, kLeast, kMost}) {
        unsigned char* row = reinterpret_cast<unsigned char*>(8);
        EXPECT_TRUE(Fails(bitmap->GetRowPtr(y, &row), kRowOutside, kSource));
        EXPECT_EQ(nullptr, row);
        row = reinterpret_cast<unsigned char*>(8);
        EXPECT_TRUE(Fails(bitmap->GetWriteRowPtr(y, &row), kRowOutside, kSource));
        EXPECT_EQ(nullptr, row);
    }
    const struct {
        LONG x, y;
        const char* text;
    } table[] = {{-1, -1, kYOutside}, {9, 4, kYOutside},  {0, kMost, kYOutside},
                 {9, 0, kXOutside},   {-1, 3, kXOutside}, {kLeast, 0, kXOutside}};
    for (const auto& [x, y, text] : table) {
        unsigned char* row = reinterpret_cast<unsigned char*>(8);
        unsigned char mask = 0xca;
        EXPECT_TRUE(Fails(bitmap->GetPixelPtr(x, y, &row, &mask), text, kSource));
        EXPECT_EQ(nullptr, row);
        EXPECT_EQ(0, mask);
        row = reinterpret_cast<unsigned char*>(8);
        mask = 0xca;
        EXPECT_TRUE(Fails(bitmap->GetWritePixelPtr(x, y, &row, &mask), text, kSource));
        EXPECT_EQ(nullptr, row);
        EXPECT_EQ(0, mask);
        EXPECT_TRUE(Fails(bitmap->put_Bit(x, y, 1), text, kSource));
        LONG bit = 7;
        EXPECT_EQ(S_FALSE, bitmap->get_Bit(x, y, &bit));
        EXPECT_EQ(0, bit);
        EXPECT_EQ("", TakeReported().text);
    }
    EXPECT_EQ(std::vector<uint8_t>(8, 0), BytesOf(*bitmap));
}

TEST(BitmapContract, BitsAreSetForAnyValueButZero) {
    const auto bitmap = NewBitmap(4, 1);
    EXPECT_EQ(S_OK, bitmap->put_Bit(0, 0, 1));
    EXPECT_EQ(S_OK, bitmap->put_Bit(2, 0, -256));
    EXPECT_EQ("#.#.", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->put_Bit(2, 0, 0));
    EXPECT_EQ("#...", Picture(*bitmap));
}

TEST(BitmapContract, FillsIncludeThePadding) {
    const auto bitmap = NewBitmap(10, 2);
    EXPECT_EQ(S_OK, bitmap->One());
    EXPECT_EQ(std::vector<uint8_t>(4, 0xff), BytesOf(*bitmap));
    LONG bit = 7;
    EXPECT_EQ(S_FALSE, bitmap->get_Bit(10, 0, &bit));
    EXPECT_EQ(0, bit);
    EXPECT_EQ(S_OK, bitmap->Zero());
    EXPECT_EQ(std::vector<uint8_t>(4, 0), BytesOf(*bitmap));
}

// ------------------------------------------------------------------------------------------------------------- drawing

TEST(BitmapContract, HorizontalLinesAreClippedAndSayWhenTheyMiss) {
    const auto bitmap = NewBitmap(10, 2);
    EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(0, -5, 2, DT_On));
    EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(1, 8, kMost, DT_On));
    EXPECT_EQ("###......./........##", Picture(*bitmap));
    EXPECT_EQ(S_FALSE, bitmap->DrawHorizontalLine(0, 10, 13, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawHorizontalLine(0, -9, -1, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawHorizontalLine(-1, 0, 9, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawHorizontalLine(2, 0, 9, DT_On));
    EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(0, 1, 5, DT_Xor));
    EXPECT_EQ(S_OK, bitmap->DrawHorizontalLine(1, 9, 9, DT_Off));
    EXPECT_EQ("#..###..../........#.", Picture(*bitmap));
}

TEST(BitmapContract, AReversedHorizontalLineReturnsTheReportersResultBeforeAnyOtherTest) {
    const auto bitmap = NewBitmap(10, 2);
    EXPECT_TRUE(Fails(bitmap->DrawHorizontalLine(0, 5, 4, DT_On), kLeftAboveRight, kSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(bitmap->DrawHorizontalLine(99, 500, 400, DT_On), kLeftAboveRight, kSource, DISP_E_EXCEPTION));
    EXPECT_EQ("........../..........", Picture(*bitmap));
}

TEST(BitmapContract, RectanglesAreClippedAndSucceedWithReversedColumns) {
    const auto bitmap = NewBitmap(6, 4);
    EXPECT_EQ(S_OK, bitmap->DrawRectangle(-3, 1, 2, kMost, DT_On));
    EXPECT_EQ("....../###.../###.../###...", Picture(*bitmap));
    EXPECT_EQ(S_FALSE, bitmap->DrawRectangle(6, 0, 9, 3, DT_On));
    EXPECT_EQ("", TakeReported().text);
    EXPECT_EQ(S_OK, bitmap->DrawRectangle(4, 0, 1, 3, DT_On));
    EXPECT_EQ(kLeftAboveRight, TakeReported().text);
    EXPECT_EQ(S_OK, bitmap->DrawRectangle(4, 3, 1, 0, DT_On));  // no rows: nothing to report
    EXPECT_EQ("", TakeReported().text);
    EXPECT_EQ("....../###.../###.../###...", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawRectangle(kLeast, kLeast, kMost, kMost, DT_Xor));
    EXPECT_EQ("######/...###/...###/...###", Picture(*bitmap));
}

TEST(BitmapContract, ADiskBetweenThePixelCentresSucceedsWithItsRowsReported) {
    const auto bitmap = NewBitmap(11, 11);
    EXPECT_EQ(S_OK, bitmap->DrawDisk(5.5, 5.5, 0.5, DT_On));
    EXPECT_EQ(kLeftAboveRight, TakeReported().text);
    EXPECT_EQ(std::string::npos, Picture(*bitmap).find('#'));
    // Radius 1 about (5.5, 5): its first and last rows, 4 and 6, hold none, and the row between does not take that
    // back.
    EXPECT_EQ(S_OK, bitmap->DrawDisk(5.5, 5, 1, DT_On));
    EXPECT_EQ(kLeftAboveRight, TakeReported().text);
    EXPECT_EQ(".....##....", Picture(*bitmap).substr(5 * 12, 11));
}

TEST(BitmapContract, DisksOfAnyNumbersAreDefined) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto bitmap = NewBitmap(5, 2);
    EXPECT_EQ(S_OK, bitmap->DrawDisk(2, 0.5, -0.25, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(nan, 1, 1, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(2, nan, 1, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(2, 1, nan, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(inf, inf, inf, DT_On));
    EXPECT_EQ(S_FALSE, bitmap->DrawDisk(1e9, 1e9, 5, DT_On));
    EXPECT_EQ("...../.....", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawDisk(2, 1, 1e9, DT_On));
    EXPECT_EQ("#####/#####", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawDisk(2, 1, inf, DT_Xor));
    EXPECT_EQ("...../.....", Picture(*bitmap));
}

TEST(BitmapContract, LinesAreDrawnBetweenTheRoundedEnds) {
    const auto bitmap = NewBitmap(5, 4);
    EXPECT_EQ(S_OK, bitmap->DrawLine(0, 0, 3, 1, DT_On));
    EXPECT_EQ("##.../..##./...../.....", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawLine(2.4, 2.6, 2.4, 2.6, DT_On));
    EXPECT_EQ("##.../..##./...../..#..", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawLine(-0.5, 2.49, 4.49, 1.5, DT_Xor));  // (0, 2) to (4, 2)
    EXPECT_EQ("##.../..##./#####/..#..", Picture(*bitmap));
}

TEST(BitmapContract, LinesFromFarAwayCostTheirVisiblePartAndAlwaysSucceed) {
    const double inf = std::numeric_limits<double>::infinity();
    const auto bitmap = NewBitmap(4, 4);
    for (int i = 0; i < 1000; ++i) {  // minutes, if the walk began at the end
        EXPECT_EQ(S_OK, bitmap->DrawLine(-1e9, -1e9, 1e9, 1e9, DT_Xor));
        EXPECT_EQ(S_OK, bitmap->DrawLine(1e9, -5, -1e9, -5, DT_Xor));
    }
    EXPECT_EQ("..../..../..../....", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawLine(-1e9, -1e9, 1e9, 1e9, DT_On));
    EXPECT_EQ("#.../.#../..#./...#", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawLine(-inf, 1, inf, 1, DT_On));
    EXPECT_EQ("#.../####/..#./...#", Picture(*bitmap));
    EXPECT_EQ(S_OK, bitmap->DrawLine(std::numeric_limits<double>::quiet_NaN(), 0, 3, 3, DT_On));
    EXPECT_EQ("#.../####/..#./...#", Picture(*bitmap));
}

}  // namespace
