#include "binary/row_run_cache.hpp"

#include <algorithm>
#include <utility>

#include "binary/run_finder.hpp"

namespace orlix {

size_t CountRowRuns(const uint8_t* row, int32_t width) {
    RunCounter counter;
    ForEachWord(row, width, counter);
    return counter.starts();
}

void FindRowRuns(const uint8_t* row, int32_t width, Run* runs) {
    RunFinder finder(runs);
    ForEachWord(row, width, finder);
    finder.Finish(width);
}

RowRunCache::RowRunCache(int32_t width, int32_t height) : width_(width) {
    const uint64_t rows = static_cast<uint64_t>(height);
    const uint64_t bytes = (static_cast<uint64_t>(width) + 7) / 8 * rows * 2 + 65536;
    if (rows * sizeof(Entry) > bytes) return;
    entries_.resize(static_cast<size_t>(rows));
    mostRuns_ = static_cast<size_t>(std::min<uint64_t>((bytes - rows * sizeof(Entry)) / sizeof(Run), kUnknown - 1));
}

RowRunCache::Row RowRunCache::At(int32_t y, const uint8_t* bytes, bool modified) {
    Entry* entry = entries_.empty() ? nullptr : &entries_[static_cast<size_t>(y)];
    if (entry && entry->count != kUnknown && !modified) return {{pool_.data() + entry->first, entry->count}, true};

    const size_t count = CountRowRuns(bytes, width_);
    const bool kept = entry && Reserve(*entry, count);
    if (!kept && row_.size() < count) row_.resize(count);
    Run* runs = kept ? pool_.data() + entry->first : row_.data();
    if (count > 0) FindRowRuns(bytes, width_, runs);
    return {{runs, count}, kept};
}

// Gives the entry room for its runs, or none and false if the pool is full.
bool RowRunCache::Reserve(Entry& entry, size_t count) {
    if (entry.count != kUnknown) used_ -= entry.count;
    if (entry.count == kUnknown || count > entry.count) {
        entry.count = kUnknown;
        // Rows that have grown leave gaps behind. Those are closed when they take half the pool, so that on average a
        // row costs no more than twice its runs.
        if (count > mostRuns_ - pool_.size() && pool_.size() >= 2 * used_) CloseGaps();
        if (count > mostRuns_ - pool_.size()) return false;
        if (count > pool_.capacity() - pool_.size()) pool_.reserve(std::min(mostRuns_, 2 * pool_.size() + count));
        entry.first = static_cast<uint32_t>(pool_.size());
        pool_.resize(pool_.size() + count);
    }
    entry.count = static_cast<uint32_t>(count);
    used_ += count;
    return true;
}

void RowRunCache::CloseGaps() {
    std::vector<Run> pool;
    pool.reserve(used_);
    for (Entry& entry : entries_) {
        if (entry.count == kUnknown) continue;
        const auto from = pool_.begin() + entry.first;
        entry.first = static_cast<uint32_t>(pool.size());
        pool.insert(pool.end(), from, from + entry.count);
    }
    pool_ = std::move(pool);
}

}  // namespace orlix
