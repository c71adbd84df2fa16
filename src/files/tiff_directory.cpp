#include "files/tiff_directory.hpp"

#include <algorithm>
#include <bit>
#include <limits>

#include "text/encoding.hpp"

namespace orlix {
namespace {

// Bytes of a value of each type; 0 for types that are unknown.
constexpr uint8_t kTypeSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

}  // namespace

TiffRational RationalOf(double value) {
    constexpr uint32_t kLargestDenominator = 1000000000;
    TiffRational rational;
    while (rational.denominator < kLargestDenominator &&
           value * rational.denominator * 10 <= std::numeric_limits<uint32_t>::max())
        rational.denominator *= 10;
    // Halves are rounded up, and 2^32 - 1/2 and more down.
    rational.numerator = static_cast<uint32_t>(
        std::min<double>(value * rational.denominator + 0.5, std::numeric_limits<uint32_t>::max()));
    return rational;
}

TiffDirectory::TiffDirectory(std::span<const uint8_t> file) : file_(file) {
    if (ReadHeader()) FindEntries(Unsigned(large_ ? 8 : 4, large_ ? 8 : 4));
}

TiffDirectory::TiffDirectory(std::span<const uint8_t> file, uint64_t offset) : file_(file) {
    if (ReadHeader()) FindEntries(offset);
}

bool TiffDirectory::ReadHeader() {
    if (file_.size() < 8 || file_[0] != file_[1] || (file_[0] != 'I' && file_[0] != 'M')) return false;
    bigEndian_ = file_[0] == 'M';
    const uint64_t version = Unsigned(2, 2);
    large_ = version == 43;
    return version == 42 || (large_ && file_.size() >= 16);
}

void TiffDirectory::FindEntries(uint64_t offset) {
    const size_t countSize = large_ ? 8 : 2, entrySize = large_ ? 20 : 12;
    if (offset > file_.size() || file_.size() - offset < countSize) return;
    entries_ = static_cast<size_t>(offset) + countSize;
    const uint64_t count = Unsigned(static_cast<size_t>(offset), countSize);
    // Far more than there are tags; it bounds the search.
    constexpr uint64_t kMost = 4096;
    count_ = static_cast<size_t>(std::min({count, uint64_t{(file_.size() - entries_) / entrySize}, kMost}));
}

uint64_t TiffDirectory::Unsigned(size_t at, size_t size) const { return Unsigned(file_.subspan(at, size)); }

uint64_t TiffDirectory::Unsigned(std::span<const uint8_t> value) const {
    uint64_t result = 0;
    for (size_t i = 0; i < value.size(); ++i) result = result << 8 | value[bigEndian_ ? i : value.size() - 1 - i];
    return result;
}

std::optional<TiffDirectory::Entry> TiffDirectory::FindAny(uint16_t tag) const {
    const size_t countSize = large_ ? 8 : 4, entrySize = large_ ? 20 : 12;
    for (size_t i = 0; i < count_; ++i) {
        const size_t at = entries_ + i * entrySize;
        if (Unsigned(at, 2) != tag) continue;
        const uint64_t type = Unsigned(at + 2, 2), count = Unsigned(at + 4, countSize);
        const size_t size = type < std::size(kTypeSizes) ? kTypeSizes[type] : 0;
        if (size == 0 || count > file_.size() / size) return std::nullopt;
        const size_t bytes = static_cast<size_t>(count) * size, valueAt = at + 4 + countSize;
        // What fits into the entry is there; everything else is somewhere in the file.
        const uint64_t place = bytes <= countSize ? valueAt : Unsigned(valueAt, countSize);
        if (place > file_.size() || bytes > file_.size() - place) return std::nullopt;
        return Entry{static_cast<uint16_t>(type), file_.subspan(static_cast<size_t>(place), bytes)};
    }
    return std::nullopt;
}

std::span<const uint8_t> TiffDirectory::Find(uint16_t tag, uint16_t type) const {
    const auto entry = FindAny(tag);
    return entry && entry->type == type ? entry->value : std::span<const uint8_t>();
}

std::optional<double> TiffDirectory::Number(uint16_t tag) const {
    const auto entry = FindAny(tag);
    if (!entry || entry->value.size() != kTypeSizes[entry->type]) return std::nullopt;
    const auto& value = entry->value;
    switch (entry->type) {
        case tiff::kShort:
        case tiff::kLong:
            return static_cast<double>(Unsigned(value));
        case tiff::kRational: {
            const auto numerator = static_cast<double>(Unsigned(value.first(4)));
            const auto denominator = static_cast<double>(Unsigned(value.last(4)));
            return denominator == 0 ? std::nullopt : std::optional(numerator / denominator);
        }
        case tiff::kFloat:
            return std::bit_cast<float>(static_cast<uint32_t>(Unsigned(value)));
        case tiff::kDouble:
            return std::bit_cast<double>(Unsigned(value));
        default:
            return std::nullopt;
    }
}

WideString TiffDirectory::Text(uint16_t tag) const {
    auto bytes = Find(tag, tiff::kAscii);
    bytes = bytes.first(static_cast<size_t>(std::ranges::find(bytes, uint8_t{0}) - bytes.begin()));
    return FromUtf8OrLatin1(bytes);
}

}  // namespace orlix
