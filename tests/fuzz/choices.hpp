// The fuzzer's decisions, made from a seed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix::fuzz {

class Choices {
public:
    // Endless. Each step has a stream of its own, so that a sequence keeps its other steps when some are left out.
    explicit Choices(uint64_t seed) : seed_(seed) {}

    void BeginStep(uint64_t step) { state_ = Mixed(seed_ ^ Mixed(step + 1)); }

    uint8_t Byte() {
        state_ += 0x9E3779B97F4A7C15;
        return static_cast<uint8_t>(Mixed(state_) >> 32);
    }
    // 0 .. n - 1.
    size_t Below(size_t n) {
        if (n < 2) return 0;
        size_t value = Byte();
        if (n > 256) value = value << 8 | Byte();
        return value % n;
    }
    // True n times of 256.
    bool Chance(int n) { return Byte() >= 256 - n; }

private:
    // Finaliser of splitmix64 (Steele, Lea, Flood 2014).
    static uint64_t Mixed(uint64_t z) {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    uint64_t seed_ = 0;
    uint64_t state_ = 0;
};

}  // namespace orlix::fuzz
