// The runs of set pixels that a bitmap keeps of rows that have not changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "geometry/run.hpp"

namespace orlix {

// How many runs of set pixels a row in the layout of a bitmap has. Bits beyond the width may hold anything.
size_t CountRowRuns(const uint8_t* row, int32_t width);
// Stores them, in order and apart, in memory for all of them.
void FindRowRuns(const uint8_t* row, int32_t width, Run* runs);

// The runs of rows as they were when they were read last. It takes at most twice the memory of the bitmap and 64 KB:
// rows whose runs do not fit in are read each time.
class RowRunCache {
public:
    RowRunCache(int32_t width, int32_t height);

    // The runs of a row whose bytes are given. They are read again if the row has been modified or is not kept. Valid
    // until the next call.
    struct Row {
        std::span<const Run> runs;
        bool kept;  // the next call gives these runs unless `modified` is set
    };
    Row At(int32_t y, const uint8_t* bytes, bool modified);

private:
    static constexpr uint32_t kUnknown = UINT32_MAX;
    struct Entry {
        uint32_t first = 0;
        uint32_t count = kUnknown;
    };

    bool Reserve(Entry& entry, size_t count);
    void CloseGaps();

    int32_t width_;
    size_t mostRuns_ = 0;         // of the pool
    std::vector<Entry> entries_;  // none if they alone would take too much
    std::vector<Run> pool_;
    size_t used_ = 0;       // runs of the pool that entries have
    std::vector<Run> row_;  // the runs of a row that is not kept
};

}  // namespace orlix
