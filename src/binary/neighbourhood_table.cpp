#include "binary/neighbourhood_table.hpp"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "binary/morphology.hpp"

namespace orlix {
namespace {

// The choices of a table, pixels being asked in the given order.
struct Diagram {
    std::vector<TableChoice> choices;
    uint16_t result;

    Diagram(const NeighbourhoodTable& table, const std::array<uint16_t, 9>& order) {
        std::map<std::tuple<uint16_t, uint16_t, uint16_t>, uint16_t> known;
        // The value of the neighbourhoods in which the first `asked` pixels are those of `index`.
        const auto build = [&](const auto& self, size_t asked, size_t index) -> uint16_t {
            if (asked == order.size()) return table[index] ? 1 : 0;
            const uint16_t pixel = order[asked];
            const uint16_t clear = self(self, asked + 1, index);
            const uint16_t set = self(self, asked + 1, index | size_t{256} >> pixel);
            if (clear == set) return set;
            const auto [at, added] = known.try_emplace({pixel, clear, set}, uint16_t{0});
            if (added) {
                choices.push_back({pixel, clear, set});
                at->second = static_cast<uint16_t>(1 + choices.size());
            }
            return at->second;
        };
        result = build(build, 0, 0);
    }
};

bool AnyDifference(const uint64_t* a, const uint64_t* b, size_t words) { return !std::equal(a, a + words, b); }

}  // namespace

// Rows from the top, the pixel itself last, or first, or the direct neighbours first: whichever needs the fewest.
NeighbourhoodProgram::NeighbourhoodProgram(const NeighbourhoodTable& table) {
    constexpr std::array<uint16_t, 9> kOrders[] = {{0, 1, 2, 3, 4, 5, 6, 7, 8},
                                                   {4, 0, 1, 2, 5, 8, 7, 6, 3},
                                                   {0, 1, 2, 5, 8, 7, 6, 3, 4},
                                                   {4, 1, 3, 5, 7, 0, 2, 6, 8}};
    for (const auto& order : kOrders) {
        Diagram diagram(table, order);
        if (&order != kOrders && diagram.choices.size() >= choices_.size()) continue;
        choices_ = std::move(diagram.choices);
        result_ = diagram.result;
    }
}

void NeighbourhoodProgram::Apply(const uint64_t* above, const uint64_t* row, const uint64_t* below, uint64_t* to,
                                 size_t words) const {
    ChoiceWords work;
    std::fill_n(work.values[0], kChoiceWords, uint64_t{0});
    std::fill_n(work.values[1], kChoiceWords, ~uint64_t{0});
    const uint64_t* const rows[3] = {above, row, below};
    for (size_t first = 0; first < words; first += kChoiceWords) {
        const size_t count = std::min(kChoiceWords, words - first);
        for (size_t k = 0; k < 3; ++k) {
            uint64_t(*const pixels)[kChoiceWords] = work.pixels + 3 * k;
            if (!rows[k] || count < kChoiceWords)
                for (size_t i = 0; i < 3; ++i) std::fill_n(pixels[i], kChoiceWords, uint64_t{0});
            if (!rows[k]) continue;
            const uint64_t* const from = rows[k] + first;
            uint64_t before = first > 0 ? from[-1] : 0;
            for (size_t i = 0; i < count; ++i) {
                const uint64_t after = first + i + 1 < words ? from[i + 1] : 0;
                pixels[0][i] = from[i] >> 1 | before << 63;
                pixels[1][i] = from[i];
                pixels[2][i] = from[i] << 1 | after >> 63;
                before = from[i];
            }
        }
        choose_(choices_.data(), choices_.size(), work);
        std::copy_n(work.values[result_], count, to + first);
    }
}

TablePasses ApplyTable(BitPlane& plane, const NeighbourhoodTable& table, int32_t times) {
    const size_t words = plane.wordsPerRow();
    const int32_t height = plane.height();
    if (words == 0 || height == 0) return {0, true};
    const NeighbourhoodProgram program(table);
    // The plane as it is, and as it was a pass before: the same wherever a row has not changed.
    BitPlane now = plane, before = plane;
    std::vector<uint64_t> row(words);
    std::vector<uint8_t> changed(static_cast<size_t>(height), 1), changes(changed);
    const auto hasChanged = [&](int32_t y) { return y >= 0 && y < height && changed[static_cast<size_t>(y)]; };
    // Words are chosen kChoiceWords at a time, however short the row is, and to gather and compare them takes about as
    // long as some hundred of these choices.
    constexpr double kWorkBesides = 700;
    const size_t chosen = (words + kChoiceWords - 1) / kChoiceWords * kChoiceWords;
    const double workOfRow = static_cast<double>(chosen) * static_cast<double>(program.choices() + 9) + kWorkBesides;

    TablePasses done{0, false};
    for (double work = 0; done.passes < times && work < kMostTableWork;) {
        bool any = false, back = true;
        for (int32_t y = 0; y < height; ++y) {
            changes[static_cast<size_t>(y)] = 0;
            if (!hasChanged(y - 1) && !hasChanged(y) && !hasChanged(y + 1)) continue;
            work += workOfRow;
            program.Apply(y > 0 ? now.row(y - 1) : nullptr, now.row(y), y + 1 < height ? now.row(y + 1) : nullptr,
                          row.data(), words);
            row[words - 1] &= plane.lastWordMask();
            const bool differs = AnyDifference(row.data(), now.row(y), words);
            changes[static_cast<size_t>(y)] = differs;
            any = any || differs;
            back = back && !AnyDifference(row.data(), before.row(y), words);
            std::copy_n(row.data(), words, before.row(y));
        }
        if (!any) {
            done.stable = true;
            break;
        }
        std::swap(now, before);
        changed.swap(changes);
        ++done.passes;
        if (back) {
            if ((times - done.passes) % 2 != 0) std::swap(now, before);
            done.passes = times;
            break;
        }
    }
    plane = std::move(now);
    return done;
}

BitPlane HitOrMiss(const BitPlane& plane, const ElementRuns& hits, const ElementRuns& misses) {
    BitPlane result = Eroded(plane, hits);
    const BitPlane missed = Eroded(Complement(plane), misses);
    for (int32_t y = 0; y < plane.height(); ++y)
        std::transform(result.row(y), result.row(y) + plane.wordsPerRow(), missed.row(y), result.row(y),
                       [](uint64_t a, uint64_t b) { return a & b; });
    return result;
}

BitPlane BoundaryOf(const BitPlane& plane, Boundary side, Connectivity neighbours) {
    // The pixels of the side, and those to which they must be neighbours.
    BitPlane own = side == Boundary::Inner ? plane : Complement(plane);
    const bool eight = neighbours == Connectivity::Eight;
    const ElementRuns element = {{-1, eight ? -1 : 0, eight ? 1 : 0}, {0, -1, 1}, {1, eight ? -1 : 0, eight ? 1 : 0}};
    const BitPlane reach = Dilated(Complement(own), element);
    for (int32_t y = 0; y < plane.height(); ++y)
        std::transform(own.row(y), own.row(y) + plane.wordsPerRow(), reach.row(y), own.row(y),
                       [](uint64_t a, uint64_t b) { return a & b; });
    return own;
}

}  // namespace orlix
