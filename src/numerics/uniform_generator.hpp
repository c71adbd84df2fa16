// Uniform random numbers for fits by random sampling: the same sequence in every build.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orlix {

// Numbers u with 0 <= u < 1, multiples of 1 / (259200 * 134456) rounded to double: n u < n for every n below 2^50.
// Three linear congruential generators x' = (a x + c) mod m, and a table of 97 numbers that shuffles their output (C.
// Bays and S. D. Durham, 1976). The first generator gives the leading digits, the second the following ones. The third
// chooses a place of the table; the number there is returned and replaced by the next one.
//
// The start: x1 = next(54773 - seed), x2 = x1 mod 134456, x1 = next(x1), x3 = x1 mod 243000; then the table is filled
// from place 0 on. A negative seed restarts: a generator with seed -1 always yields the same numbers. The sequence
// repeats after 65,345,616,000 numbers.
class UniformGenerator {
public:
    // -200000 <= seed < 0.
    explicit UniformGenerator(int32_t seed);

    double operator()();

private:
    double NextOfTwo();

    uint32_t leading_, following_, place_;
    std::array<double, 97> table_;
};

}  // namespace orlix
