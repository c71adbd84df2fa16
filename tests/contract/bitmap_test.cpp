// Bitmaps as clients see them. What is drawn is tested in tests/binary.
#include <cmath>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr char kBitmapSource[] = "Orlix.Bitmap.1";
constexpr char kLeftAboveRight[] = "IBitmapProcess::DrawHorizontalLine: left cannot be larger than right.";
constexpr char kRowOutside[] = "IBitmapProcess::GetRowPtr: row is out of bounds";
constexpr char kXOutside[] = "IBitmapProcess::GetPixelPtr: X is out of bounds";
constexpr char kYOutside[] = "IBitmapProcess::GetPixelPtr: Y is out of bounds";

ComPtr<IBitmapProcess> EmptyBitmap() { return CreateObject<IBitmapProcess>("Orlix.Bitmap"); }

// ------------------------------------------------------------------------------------------------------------ creation

TEST(BitmapContract, ANewBitmapHasNoPixels) {
    const auto bitmap = EmptyBitmap();
    EXPECT_EQ("", RowsOf(bitmap.get()));
    EXPECT_EQ(0, Get(bitmap, &IBitmap::get_Height));
    EXPECT_EQ(nullptr, Get(bitmap, &IBitmap::get_Bitmap).bmBits);
    EXPECT_TRUE(Fails(bitmap->put_Bit(0, 0, 1), kYOutside, kBitmapSource));
    for (const HRESULT missed : {bitmap->DrawHorizontalLine(0, 0, 5, DT_On), bitmap->DrawRectangle(0, 0, 5, 5, DT_On),
                                 bitmap->DrawDisk(5, 5, 2, DT_On)})
        EXPECT_EQ(S_FALSE, missed);
    EXPECT_EQ(S_OK, bitmap->DrawLine(0, 0, 5, 5, DT_On));
    EXPECT_EQ(S_OK, bitmap->Zero());
    EXPECT_EQ(S_OK, bitmap->One());
}

TEST(BitmapContract, RowsAreOfWholeWordsWhosePaddingIsFilledToo) {
    for (const auto& [width, bytes] : {std::pair{1, 2}, {16, 2}, {17, 4}, {24, 4}}) {
        const auto bitmap = NewBitmap(width, 3);
        const BITMAP record = Get(bitmap, &IBitmap::get_Bitmap);
        EXPECT_EQ((std::vector<LONG>{0, width, 3, bytes, 1, 1}),
                  (std::vector<LONG>{record.bmType, record.bmWidth, record.bmHeight, record.bmWidthBytes,
                                     record.bmPlanes, record.bmBitsPixel}));
        EXPECT_EQ(S_OK, bitmap->One());
        EXPECT_EQ(std::vector<uint8_t>(static_cast<size_t>(3 * bytes), 0xff), BytesOf(bitmap.get()));
        LONG bit = 7;
        EXPECT_EQ(S_FALSE, bitmap->get_Bit(width, 0, &bit));
        EXPECT_EQ(0, bit);
        EXPECT_EQ(S_OK, bitmap->Zero());
        EXPECT_EQ(std::vector<uint8_t>(static_cast<size_t>(3 * bytes), 0), BytesOf(bitmap.get()));
    }
}

TEST(BitmapContract, CreationKeepsTheOldBytesUnlessAskedToClearOrRefused) {
    const auto bitmap = EmptyBitmap();
    ASSERT_EQ(S_OK, bitmap->Create(10, 1, 0));
    EXPECT_EQ(std::vector<uint8_t>(2, 0), BytesOf(bitmap.get()));
    bitmap->One();
    ASSERT_EQ(S_OK, bitmap->Create(20, 2, 0));
    const std::vector<uint8_t> kept = {0xff, 0xff, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(kept, BytesOf(bitmap.get()));
    const std::string width = "CBITMAP::Create: width must be positive";
    EXPECT_TRUE(Fails(bitmap->Create(0, 0, 1), width, kBitmapSource));
    EXPECT_TRUE(Fails(bitmap->Create(kLeast, 5, 1), width, kBitmapSource));
    EXPECT_TRUE(Fails(bitmap->Create(5, 0, 1), "CBITMAP::Create: height must be positive", kBitmapSource));
    EXPECT_TRUE(FailsSilently(bitmap->Create(kMost, kMost, 1)));  // 2^59 bytes
    EXPECT_EQ(S_FALSE, bitmap->CreateFromBitmap(bitmap.get()));
    EXPECT_EQ(S_FALSE, bitmap->CreateFromBitmap(Cast<IBitmap>(bitmap).get()));
    EXPECT_TRUE(Fails(bitmap->CreateFromBitmap(EmptyBitmap().get()), width, kBitmapSource));
    EXPECT_EQ(kept, BytesOf(bitmap.get()));
    ASSERT_EQ(S_OK, bitmap->Create(20, 2, -1));
    EXPECT_EQ(std::vector<uint8_t>(8, 0), BytesOf(bitmap.get()));
}

TEST(BitmapContract, CopiesForeignBitmapsAndRefusesImpossibleOnes) {
    const auto bitmap = NewBitmap(10, 2);
    uint8_t bytes[8] = {0x80, 0xff, 0xff, 0xff, 0x40, 0xff, 0xff, 0xff};
    const auto foreign = MakeCounted<ForeignBitmap>();
    foreign->record = {0, 3, 2, 4, 1, 1, bytes};  // rows of double words
    EXPECT_EQ(S_OK, bitmap->CreateFromBitmap(foreign.get()));
    EXPECT_EQ("#../.#.", RowsOf(bitmap.get()));

    foreign->result = E_OUTOFMEMORY;
    EXPECT_TRUE(FailsSilently(bitmap->CreateFromBitmap(foreign.get())));
    foreign->result = S_OK;
    foreign->record.bmHeight = -2;
    EXPECT_TRUE(
        Fails(bitmap->CreateFromBitmap(foreign.get()), "CBITMAP::Create: height must be positive", kBitmapSource));
    foreign->record.bmHeight = 2;
    foreign->record.bmBits = nullptr;
    EXPECT_TRUE(FailsSilently(bitmap->CreateFromBitmap(foreign.get())));
    EXPECT_EQ("#../.#.", RowsOf(bitmap.get()));
    EXPECT_EQ(1u, ReferencesOf(foreign.get()));
}

// -------------------------------------------------------------------------------------------------------- pixel access

TEST(BitmapContract, PointersLeadToTheBitsOfThePixels) {
    const auto bitmap = NewBitmap(20, 3);
    using Byte = unsigned char;
    auto* const bits = static_cast<Byte*>(Get(bitmap, &IBitmap::get_Bitmap).bmBits);
    EXPECT_EQ(bits + 8, Get(bitmap, &IBitmap::GetRowPtr, 2));
    EXPECT_EQ(bits + 4, Get(bitmap, &IBitmapProcess::GetWriteRowPtr, 1));
    EXPECT_EQ(std::tuple(bits + 10, Byte{0x10}), Get(bitmap, &IBitmap::GetPixelPtr, 19, 2));
    EXPECT_EQ(std::tuple(bits + 1, Byte{0x80}), Get(bitmap, &IBitmapProcess::GetWritePixelPtr, 8, 0));
    bits[1] = 0x80;
    EXPECT_EQ(S_OK, bitmap->put_Bit(19, 2, 1));
    EXPECT_EQ(S_OK, bitmap->put_Bit(0, 1, -256)) << "any value but zero";
    EXPECT_EQ("........#.........../#.................../...................#", RowsOf(bitmap.get()));
    EXPECT_EQ(S_OK, bitmap->put_Bit(0, 1, 0));
    EXPECT_EQ(0, bits[4]);
}

TEST(BitmapContract, PointersOutsideAreClearedAndReported) {
    const auto bitmap = NewBitmap(9, 4);
    const struct {
        LONG x, y;
        const char* text;
    } table[] = {{-1, -1, kYOutside}, {9, 4, kYOutside},  {0, kLeast, kYOutside}, {0, kMost, kYOutside},
                 {9, 0, kXOutside},   {-1, 3, kXOutside}, {kLeast, 0, kXOutside}};
    for (const auto& [x, y, text] : table)
        for (const bool write : {false, true}) {
            unsigned char* row = reinterpret_cast<unsigned char*>(8);
            unsigned char mask = 0xca;
            EXPECT_TRUE(
                Fails(write ? bitmap->GetWritePixelPtr(x, y, &row, &mask) : bitmap->GetPixelPtr(x, y, &row, &mask),
                      text, kBitmapSource));
            EXPECT_EQ(nullptr, row);
            EXPECT_EQ(0, mask);
            if (text == kYOutside) {
                row = &mask;
                EXPECT_TRUE(Fails(write ? bitmap->GetWriteRowPtr(y, &row) : bitmap->GetRowPtr(y, &row), kRowOutside,
                                  kBitmapSource));
                EXPECT_EQ(nullptr, row);
            }
            EXPECT_TRUE(Fails(bitmap->put_Bit(x, y, 1), text, kBitmapSource));
            LONG bit = 7;
            EXPECT_EQ(S_FALSE, bitmap->get_Bit(x, y, &bit));
            EXPECT_EQ(0, bit);
            EXPECT_EQ("", TakeReportedText());
        }
    EXPECT_EQ(std::vector<uint8_t>(8, 0), BytesOf(bitmap.get()));
}

// ------------------------------------------------------------------------------------------------------------- drawing

// One bitmap, on which the calls draw one after the other; what each draws is compared with
// its definition in tests/binary.
TEST(BitmapContract, DrawingIsClippedAndSaysWhenItMisses) {
    const auto bitmap = NewBitmap(6, 4);
    constexpr HRESULT kMissed = S_FALSE;
    const struct {
        std::function<HRESULT(IBitmap&)> call;
        HRESULT result;
        const char* rows;
        const char* text = "";
    } steps[] = {
        {[](auto& b) { return b.DrawHorizontalLine(0, -5, 2, DT_On); }, S_OK, "###.../....../....../......"},
        {[](auto& b) { return b.DrawHorizontalLine(0, 6, 9, DT_On); }, kMissed, "###.../....../....../......"},
        // A reversed line has the reporter's result before any other test, a rectangle of such lines succeeds.
        {[](auto& b) { return b.DrawHorizontalLine(99, 500, 400, DT_On); }, DISP_E_EXCEPTION,
         "###.../....../....../......", kLeftAboveRight},
        {[](auto& b) { return b.DrawRectangle(4, 0, 1, 3, DT_On); }, S_OK, "###.../....../....../......",
         kLeftAboveRight},
        {[](auto& b) { return b.DrawRectangle(6, 0, 9, 3, DT_On); }, kMissed, "###.../....../....../......"},
        {[](auto& b) { return b.DrawRectangle(-3, 1, 2, kMost, DT_On); }, S_OK, "###.../###.../###.../###..."},
        // A disk between the pixel centres: none of its rows has any, and each row reports it.
        {[](auto& b) { return b.DrawDisk(2.5, 1.5, 0.5, DT_On); }, S_OK, "###.../###.../###.../###...",
         kLeftAboveRight},
        {[](auto& b) { return b.DrawDisk(2, 1, kNaN, DT_On); }, kMissed, "###.../###.../###.../###..."},
        // Lines between the rounded ends; they always succeed.
        {[](auto& b) { return b.DrawLine(2.4, 0.4, 5, 2.6, DT_Xor); }, S_OK, "##..../####../###.#./###..#"},
        {[](auto& b) { return b.DrawLine(kNaN, 0, 3, 3, DT_On); }, S_OK, "##..../####../###.#./###..#"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        EXPECT_EQ(step.result, step.call(*bitmap));
        EXPECT_EQ(step.text, TakeReportedText());
        EXPECT_EQ(step.rows, RowsOf(bitmap.get()));
    }
    for (int i = 0; i < 2000; ++i)  // minutes, if the walk began at the end
        EXPECT_EQ(S_OK, bitmap->DrawLine(-1e9, -1e9, 1e9, 1e9, DT_Xor));
}

}  // namespace
}  // namespace orlix::testing
