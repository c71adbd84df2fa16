#include "binary/thinning.hpp"

#include <array>
#include <bit>
#include <cstddef>
#include <queue>
#include <tuple>
#include <vector>

namespace orlix {
namespace {

// The pixels of a bitmap with a ring of pixels around them: every pixel has eight neighbours. Pixel (x, y) has the
// number stride() (y + 1) + x + 1, which is its bit.
class RingedPlane {
public:
    // The image, or its complement with a ring of ones.
    RingedPlane(const BitPlane& image, bool complement)
        : width_(image.width()),
          height_(image.height()),
          wordsPerRow_((static_cast<size_t>(width_) + 2 + 63) / 64),
          words_(wordsPerRow_ * (static_cast<size_t>(height_) + 2) + 2),
          inside_(wordsPerRow_, ~uint64_t{0}) {
        inside_.front() >>= 1;
        // Bits behind column `width`, the last inside.
        inside_.back() &= ~uint64_t{0} << (63 - static_cast<uint32_t>(width_) % 64);
        if (wordsPerRow_ * 64 - static_cast<size_t>(width_) > 64) inside_.back() = 0;
        const uint64_t invert = complement ? ~uint64_t{0} : 0;
        for (int32_t y = 0; y < height_; ++y) {
            const uint64_t* from = image.row(y);
            uint64_t* to = &word((static_cast<size_t>(y) + 1) * wordsPerRow_);
            for (size_t i = 0; i < image.wordsPerRow(); ++i) {
                to[i] |= from[i] >> 1;
                if (i + 1 < wordsPerRow_) to[i + 1] = from[i] << 63;
            }
        }
        for (uint64_t& word : words_) word ^= invert;
    }

    BitPlane Image(bool complement) const {
        BitPlane image(width_, height_);
        const uint64_t invert = complement ? ~uint64_t{0} : 0;
        for (int32_t y = 0; y < height_; ++y) {
            const uint64_t* from = &words_[1 + (static_cast<size_t>(y) + 1) * wordsPerRow_];
            uint64_t* to = image.row(y);
            for (size_t i = 0; i < image.wordsPerRow(); ++i)
                to[i] = (from[i] << 1 | (i + 1 < wordsPerRow_ ? from[i + 1] >> 63 : 0)) ^ invert;
            if (width_ > 0) to[image.wordsPerRow() - 1] &= image.lastWordMask();
        }
        return image;
    }

    // Words of the rows of the bitmap, and of a word the bits that are pixels of it.
    size_t firstWord() const { return wordsPerRow_; }
    size_t endOfWords() const { return wordsPerRow_ * (static_cast<size_t>(height_) + 1); }
    size_t wordsPerRow() const { return wordsPerRow_; }
    bool IsInside(size_t word) const { return word >= firstWord() && word < endOfWords(); }
    uint64_t InsideOf(size_t word) const { return inside_[word % wordsPerRow_]; }

    size_t stride() const { return 64 * wordsPerRow_; }
    static uint64_t MaskOf(size_t pixel) { return uint64_t{1} << (63 - pixel % 64); }
    bool operator[](size_t pixel) const { return (word(pixel / 64) & MaskOf(pixel)) != 0; }
    void Clear(size_t pixel) { word(pixel / 64) &= ~MaskOf(pixel); }

    uint64_t& word(size_t i) { return words_[i + 1]; }
    uint64_t word(size_t i) const { return words_[i + 1]; }

private:
    int32_t width_, height_;
    size_t wordsPerRow_;
    std::vector<uint64_t> words_;  // with one more at either end, which is read as a neighbour and has no effect
    std::vector<uint64_t> inside_;
};

enum Side { kNorth, kNorthEast, kEast, kSouthEast, kSouth, kSouthWest, kWest, kNorthWest };

// For each pixel of a word, its eight neighbours as words of their own. Words beyond the ends of a row are those of the
// rows before and after it; they only meet bits that are not inside.
struct Neighbours {
    std::array<uint64_t, 8> at;

    Neighbours(const RingedPlane& plane, size_t word) {
        const auto row = [&](size_t i, Side left, Side middle, Side right) {
            at[middle] = plane.word(i);
            at[left] = plane.word(i) >> 1 | plane.word(i - 1) << 63;
            at[right] = plane.word(i) << 1 | plane.word(i + 1) >> 63;
        };
        uint64_t centre;
        row(word - plane.wordsPerRow(), kNorthWest, kNorth, kNorthEast);
        row(word + plane.wordsPerRow(), kSouthWest, kSouth, kSouthEast);
        centre = plane.word(word);
        at[kWest] = centre >> 1 | plane.word(word - 1) << 63;
        at[kEast] = centre << 1 | plane.word(word + 1) >> 63;
    }

    // The pixels with crossing number 1.
    uint64_t Simple(Connectivity connectivity) const {
        std::array<uint64_t, 4> crossing;
        for (size_t i = 0; i < 4; ++i) {
            const uint64_t a = at[2 * i];
            const uint64_t b = at[2 * i + 1];
            const uint64_t c = at[(2 * i + 2) % 8];
            crossing[i] = connectivity == Connectivity::Eight ? ~a & (b | c) : a & ~(b & c);
        }
        const auto [n, e, s, w] = crossing;
        return (n ^ e ^ s ^ w) & ~((n & e) | (s & w));
    }

    uint64_t AtLeastTwo(Connectivity connectivity) const {
        uint64_t one = 0;
        uint64_t two = 0;
        for (size_t i = 0; i < 8; i += connectivity == Connectivity::Eight ? 1 : 2) {
            two |= one & at[i];
            one |= at[i];
        }
        return two;
    }

    // Of a pixel that has one neighbour: whether that is on a side.
    uint64_t On(size_t side, Connectivity connectivity) const {
        if (connectivity == Connectivity::Four) return at[side];
        return at[(side + 7) % 8] | at[side] | at[(side + 1) % 8];
    }
};

class Thinning {
public:
    Thinning(RingedPlane& plane, Connectivity connectivity, bool removesEnds)
        : plane_(plane), connectivity_(connectivity), removesEnds_(removesEnds) {
        age_.assign(plane.endOfWords(), kIdle);
        for (size_t word = plane.firstWord(); word < plane.endOfWords(); ++word) {
            if ((plane.word(word) & plane.InsideOf(word)) == 0) continue;
            const Neighbours around(plane, word);
            const uint64_t inner = around.at[kNorth] & around.at[kEast] & around.at[kSouth] & around.at[kWest];
            if (plane.word(word) & plane.InsideOf(word) & ~inner) Visit(word);
        }
    }

    void Run(int64_t passes) {
        for (; passes > 0 && !words_.empty(); --passes)
            for (const Side side : {kNorth, kSouth, kEast, kWest}) Step(side);
    }

private:
    // A word is visited in the four steps after the last change in or beside it; after that no step finds anything new.
    static constexpr uint8_t kIdle = 4;

    void Visit(size_t word) {
        if (!plane_.IsInside(word)) return;
        if (age_[word] == kIdle) words_.push_back(word);
        age_[word] = 0;
    }

    void Step(Side side) {
        removed_.clear();
        for (const size_t word : words_) {
            const uint64_t pixels = plane_.word(word) & plane_.InsideOf(word);
            if (pixels == 0) continue;
            const Neighbours around(plane_, word);
            const uint64_t open = pixels & ~around.at[side];
            if (open == 0) continue;
            uint64_t may = around.AtLeastTwo(connectivity_);
            if (removesEnds_) may |= around.On((side + 4U) % 8, connectivity_);
            const uint64_t removed = open & may & around.Simple(connectivity_);
            if (removed != 0) removed_.push_back({word, removed});
        }
        size_t kept = 0;
        for (const size_t word : words_)
            if (++age_[word] != kIdle) words_[kept++] = word;
        words_.resize(kept);
        for (const auto& [word, bits] : removed_) {
            plane_.word(word) &= ~bits;
            for (const size_t i : {word - plane_.wordsPerRow(), word, word + plane_.wordsPerRow()}) {
                Visit(i);
                if (bits >> 63) Visit(i - 1);
                if (bits & 1) Visit(i + 1);
            }
        }
    }

    struct Removed {
        size_t word;
        uint64_t bits;
    };

    RingedPlane& plane_;
    const Connectivity connectivity_;
    const bool removesEnds_;
    std::vector<size_t> words_;  // those to visit
    std::vector<uint8_t> age_;   // of each word: the steps since the last change
    std::vector<Removed> removed_;
};

class Pruning {
public:
    Pruning(RingedPlane& plane, Connectivity connectivity, int64_t length)
        : plane_(plane), connectivity_(connectivity), longest_(length > 0 ? static_cast<uint64_t>(length) : 0) {}

    void Run() {
        for (size_t word = plane_.firstWord(); word < plane_.endOfWords(); ++word) {
            uint64_t pixels = plane_.word(word) & plane_.InsideOf(word);
            if (pixels == 0) continue;
            const Neighbours around(plane_, word);
            for (pixels &= ~around.AtLeastTwo(connectivity_); pixels != 0;) {
                const auto i = static_cast<size_t>(std::countl_zero(pixels));
                pixels &= ~RingedPlane::MaskOf(i);
                if (NeighboursOf(64 * word + i).count == 1) Start(64 * word + i);
            }
        }
        while (!branches_.empty()) {
            const Branch branch = branches_.top();
            branches_.pop();
            // Lengths only grow: one that is still right is the shortest of all.
            if (NeighboursOf(branch.junction).count > 2)
                Remove(branch);
            else
                Follow(branch);
        }
    }

private:
    struct Branch {
        uint64_t length;
        size_t end;       // the first pixel
        size_t last;      // the last one
        size_t junction;  // where it stands, or stood
        bool operator>(const Branch& other) const { return std::tie(length, end) > std::tie(other.length, other.end); }
    };
    struct Found {
        std::array<size_t, 8> pixel;
        size_t count;
    };

    Found NeighboursOf(size_t pixel) const {
        Found found = {};
        const auto look = [&](size_t other) {
            if (plane_[other]) found.pixel[found.count++] = other;
        };
        const bool diagonal = connectivity_ == Connectivity::Eight;
        for (const size_t row : {pixel - plane_.stride(), pixel, pixel + plane_.stride()}) {
            if (diagonal || row == pixel) look(row - 1);
            if (row != pixel) look(row);
            if (diagonal || row == pixel) look(row + 1);
        }
        return found;
    }

    void Start(size_t end) { Follow({1, end, end, NeighboursOf(end).pixel[0]}); }

    // Follows a branch to a junction. Branches that are too long, and lines, are forgotten.
    void Follow(Branch branch) {
        for (; branch.length <= longest_; ++branch.length) {
            const Found next = NeighboursOf(branch.junction);
            if (next.count == 1) return;
            if (next.count > 2) return branches_.push(branch);
            const size_t before = branch.last;
            branch.last = branch.junction;
            branch.junction = next.pixel[next.pixel[0] == before ? 1 : 0];
        }
    }

    void Remove(const Branch& branch) {
        size_t pixel = branch.end;
        for (uint64_t i = 0; i < branch.length; ++i) {
            const size_t next = NeighboursOf(pixel).pixel[0];
            plane_.Clear(pixel);
            pixel = next;
        }
        const Found left = NeighboursOf(pixel);
        if (left.count != 2) return;
        const uint64_t simple = Neighbours(plane_, pixel / 64).Simple(connectivity_);
        if ((simple & RingedPlane::MaskOf(pixel)) == 0) return;
        plane_.Clear(pixel);
        for (size_t i = 0; i < 2; ++i)
            if (NeighboursOf(left.pixel[i]).count == 1) Start(left.pixel[i]);
    }

    RingedPlane& plane_;
    const Connectivity connectivity_;
    const uint64_t longest_;
    std::priority_queue<Branch, std::vector<Branch>, std::greater<>> branches_;
};

}  // namespace

BitPlane Thin(const BitPlane& image, Connectivity connectivity, int64_t passes) {
    RingedPlane plane(image, false);
    Thinning(plane, connectivity, false).Run(passes);
    return plane.Image(false);
}

BitPlane Skeleton(const BitPlane& image, Connectivity connectivity) {
    // Nothing redundant is left. With Connectivity::Eight, a simple pixel has background on a side, and the step of
    // that side would remove it. With Connectivity::Four, its four sides may be set and one corner clear, say the
    // north-western one. But then, if the step to the west kept its northern neighbour and the step to the north its
    // north-eastern one, the pixel east of its eastern neighbour is clear, and the step to the east removes that one.
    return Thin(image, connectivity, INT64_MAX);
}

BitPlane Prune(const BitPlane& image, Connectivity connectivity, int64_t length) {
    RingedPlane plane(image, false);
    Pruning(plane, connectivity, length).Run();
    return plane.Image(false);
}

BitPlane Thicken(const BitPlane& image, Connectivity connectivity, int64_t passes) {
    RingedPlane plane(image, true);
    Thinning(plane, Dual(connectivity), true).Run(passes);
    return plane.Image(true);
}

}  // namespace orlix
