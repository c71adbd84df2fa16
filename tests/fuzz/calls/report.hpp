// The line that tells how far a run is; scripts/fuzz adds up those of several processes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "fuzz/calls/world.hpp"

#ifndef _WIN32
// The counters of all edges side by side, where the compiler counts them.
extern "C" [[gnu::weak]] uint8_t __start___sancov_cntrs[];
extern "C" [[gnu::weak]] uint8_t __stop___sancov_cntrs[];
#endif

namespace orlix::fuzz {

// Edges that any sequence so far has reached; 0 where nothing counts them.
inline uint64_t ReachedEdges() {
#ifdef _WIN32
    return 0;
#else
    static std::vector<bool> reached;
    static uint64_t count = 0;
    const uint8_t* const counters = __start___sancov_cntrs;
    if (!counters) return 0;
    reached.resize(static_cast<size_t>(__stop___sancov_cntrs - __start___sancov_cntrs));
    for (size_t i = 0; i < reached.size(); ++i)
        if (counters[i] && !reached[i]) {
            reached[i] = true;
            ++count;
        }
    return count;
#endif
}

// edges: how many of the instrumented edges have been reached, 0 where nothing is instrumented.
inline void PrintProgress(uint64_t edges) {
    const Tally& tally = TallyOfProcess();
    std::printf("progress: cpu=%.1f sequences=%llu calls=%llu callbacks=%llu reentrant=%llu edges=%llu slow=%llu\n",
                ProcessorSeconds(), static_cast<unsigned long long>(tally.sequences),
                static_cast<unsigned long long>(tally.calls), static_cast<unsigned long long>(tally.callbacks),
                static_cast<unsigned long long>(tally.reentrantCalls), static_cast<unsigned long long>(edges),
                static_cast<unsigned long long>(tally.slowCalls));
    std::fflush(stdout);
}

}  // namespace orlix::fuzz
