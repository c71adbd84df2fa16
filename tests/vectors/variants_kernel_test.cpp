#include <algorithm>
#include <set>
#include <string>

#include "orlix_image/kernels_in_use.hpp"
#include "support/kernel_testing.hpp"
#include "vectors/variants.hpp"

namespace orlix {
namespace {

using Fn = int (*)();
constexpr Variant<Fn> kTable[] = {
    {"avx512", Cpu::Avx512, nullptr}, {"avx2", Cpu::Avx2, nullptr}, {"scalar", Cpu::Any, nullptr}};

TEST(Variants, AProcessorGetsTheBestThatItCanRun) {
    EXPECT_STREQ("avx512", SupportedBy(Cpu::Avx512, kTable).front().name);
    EXPECT_STREQ("avx2", SupportedBy(Cpu::Avx2, kTable).front().name);
    EXPECT_STREQ("scalar", SupportedBy(Cpu::Sse2, kTable).front().name);
    EXPECT_STREQ("scalar", SupportedBy(Cpu::Any, kTable).front().name);
    EXPECT_EQ(3u, SupportedBy(Cpu::Avx512, kTable).size());
    EXPECT_EQ(1u, SupportedBy(Cpu::Any, kTable).size());
}

TEST(Variants, TheChoiceIsNeverBeyondTheMachine) {
    EXPECT_LE(CpuInUse(), CpuOfThisMachine());
    EXPECT_GE(CpuOfThisMachine(), Cpu::Sse2);
}

// What has variants for newer processors, as users know it.
std::set<std::string> KernelNames() {
    std::set<std::string> names = {"look-up table, 8 bits",
                                   "cast, 16 bits to 8",
                                   "cast, float to 8 bits",
                                   "cast, 8 bits to 16",
                                   "cast, 8 bits to float",
                                   "bitmap logic",
                                   "bitmap count",
                                   "bitmap translation",
                                   "binary 3x3 erosion and dilation",
                                   "binary erosion and dilation, rectangles",
                                   "bit planes, union",
                                   "bit planes, moved union",
                                   "neighbourhood tables",
                                   "surface values",
                                   "hemisphere values",
                                   "hemisphere sums",
                                   "hemisphere residuals",
                                   "tilted hemisphere sums",
                                   "correct with a polynomial, 8 bits",
                                   "outlines",
                                   "checksums, CRC-32",
                                   "checksums, Adler-32",
                                   "PNG filters",
                                   "PNG filters, undone"};
    const auto add = [&](std::initializer_list<std::string> kernels, std::initializer_list<std::string> kinds) {
        for (const std::string& kernel : kernels)
            for (const std::string& kind : kinds) names.insert(kernel + ", " + kind);
    };
    add({"invert and add", "threshold", "gray measurements", "extremes", "median", "extremum sharpening",
         "extremum sharpening of 3x3", "plane", "surfaces", "robust score", "robust score, selection", "correct"},
        {"8 bits", "16 bits", "32 bits", "float"});
    add({"divide", "display levels"}, {"16 bits", "32 bits", "float"});
    add({"histogram"}, {"32 bits", "float"});
    add({"robust score, quick", "add image", "Gaussian 3x3", "Gaussian 5x5", "Laplacian", "low sharpening",
         "medium sharpening", "Sobel"},
        {"8 bits", "16 bits", "float"});
    add({"picture"}, {"greys", "colour table", "colours of planes", "greys of some columns",
                      "colour table of some columns", "pixels of some columns", "rows", "interpolation", "averages"});
    add({"frames"}, {"words of 10 bits", "words of 12 bits", "words of 14 bits", "words of 16 bits", "10p", "12p",
                     "10Packed", "12Packed", "colours", "mosaics of 8 bits", "mosaics of 16 bits"});
    return names;
}

TEST(Variants, EveryKernelIsListedOnceWithAVariantOfThisMachine) {
    const std::string variants[] = {"scalar", "sse2", "avx2", "avx512"};  // in the order of Cpu
    std::set<std::string> kernels;
    for (const KernelInUse& kernel : KernelsInUse()) {
        EXPECT_TRUE(kernels.insert(kernel.kernel).second) << kernel.kernel;
        const auto cpu = std::find(std::begin(variants), std::end(variants), kernel.variant) - std::begin(variants);
        EXPECT_LE(cpu, static_cast<ptrdiff_t>(CpuInUse())) << kernel.kernel << " " << kernel.variant;
    }
    EXPECT_EQ(KernelNames(), kernels);
}

}  // namespace
}  // namespace orlix
