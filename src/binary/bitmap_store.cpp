#include "binary/bitmap_store.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "binary/bit_plane.hpp"
#include "component/failure.hpp"

namespace orlix {
namespace {

void RequireSize(int32_t width, int32_t height) {
    if (width < 1) throw Failure("CBITMAP::Create: width must be positive");
    if (height < 1) throw Failure("CBITMAP::Create: height must be positive");
}

}  // namespace

void BitmapStore::Create(int32_t width, int32_t height, bool zero) {
    RequireSize(width, height);
    const int32_t rowBytes = RowBytes(width);
    const uint64_t total = static_cast<uint64_t>(rowBytes) * static_cast<uint64_t>(height);
    if (total > kMostBytes) throw std::bad_alloc();
    const size_t size = static_cast<size_t>(total);

    // What can fail comes first.
    std::vector<bool> modified(static_cast<size_t>(height), true);
    bytes_.Resize(size);

    if (zero) std::memset(bytes_.data(), 0, size);
    modified_ = std::move(modified);
    lent_.clear();
    runs_.reset();
    record_ = {};
    record_.bmWidth = width;
    record_.bmHeight = height;
    record_.bmWidthBytes = rowBytes;
    record_.bmPlanes = 1;
    record_.bmBitsPixel = 1;
    record_.bmBits = bytes_.data();
}

void BitmapStore::CopyFrom(const BITMAP& source) {
    RequireSize(source.bmWidth, source.bmHeight);
    const BitRows rows = ReadableRows(source);
    BitmapStore copy;
    copy.Create(source.bmWidth, source.bmHeight, false);
    // Padding is copied too, as far as the source's rows have it.
    const auto bytes = static_cast<size_t>(std::min(rows.rowBytes, copy.rowBytes()));
    for (int32_t y = 0; y < copy.height(); ++y) std::memcpy(copy.WriteRow(y), rows.row(y), bytes);
    *this = std::move(copy);
}

void BitmapStore::Fill(uint8_t value) {
    if (bytes_.size() > 0) std::memset(bytes_.data(), value, bytes_.size());
    runs_.reset();
}

std::span<const Run> BitmapStore::RowRuns(int32_t y) {
    if (!runs_) runs_ = std::make_unique<RowRunCache>(width(), height());
    const RowRunCache::Row row = runs_->At(y, Row(y), Modified(y));
    if (row.kept) ClearModified(y);
    return row.runs;
}

}  // namespace orlix
