// Shared by the tests of 3x3 kernels.
#pragma once

#include "filters/filter_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {

// Three rows of n + 2 pixels, each between its own guards and at a different alignment, and room for n results.
template <class T>
class Squares {
public:
    Squares(std::span<const T> top, std::span<const T> middle, std::span<const T> bottom)
        : rows_{Guarded<T>(top, 1), Guarded<T>(middle, 3), Guarded<T>(bottom, 0)} {}
    explicit Squares(const std::array<T, 9>& square)
        : Squares({square.data(), 3}, {square.data() + 3, 3}, {square.data() + 6, 3}) {}
    Squares(size_t n, uint32_t seed)
        : Squares(Noise<T>(n + 2, seed), Noise<T>(n + 2, seed + 1), Noise<T>(n + 2, seed + 2)) {}

    size_t n() const { return rows_[0].size() - 2; }
    // Column -1 <= x <= n() of row 0, 1 or 2.
    T at(ptrdiff_t x, size_t row) { return rows_[row].data()[x + 1]; }

    // Fails the test if the kernel writes outside the n results.
    template <class Fn>
    std::vector<T> Filtered(const Fn& fn, const FilterParameters<T>& parameters) {
        const T* const rows[3] = {rows_[0].data() + 1, rows_[1].data() + 1, rows_[2].data() + 1};
        Guarded<T> to(std::vector<T>(n(), T{99}), n() % 7);
        fn(rows, to.data(), n(), parameters);
        EXPECT_TRUE(to.GuardsIntact());
        return {to.data(), to.data() + n()};
    }

private:
    std::array<Guarded<T>, 3> rows_;
};

// Checks that every variant in a table gives the bits of the definition.
template <class T, class Table>
void ExpectVariantsAgree(const Table& table, Squares<T>& squares, const FilterParameters<T>& parameters) {
    const std::vector<T> want = squares.Filtered(std::end(table)[-1].fn, parameters);
    for (const auto& variant : SupportedOnThisCpu(table))
        ASSERT_TRUE(SameBits(want.data(), squares.Filtered(variant.fn, parameters).data(), want.size()))
            << variant.name;
}

// The full range, a part of it, an empty one and a reversed one.
template <class T>
std::vector<FilterParameters<T>> LuminanceRanges() {
    const T most = std::numeric_limits<T>::max();
    return {{std::numeric_limits<T>::lowest(), most}, {T{60}, T{200}}, {T{7}, T{7}}, {T{150}, T{40}}};
}

// The same at every awkward size and in every range.
template <class T, class Table>
void ExpectVariantsAgree(const Table& table) {
    for (const FilterParameters<T>& range : LuminanceRanges<T>())
        for (const size_t n : kAwkwardSizes) {
            Squares<T> squares(n, static_cast<uint32_t>(n));
            ExpectVariantsAgree(table, squares, range);
        }
}

}  // namespace orlix
