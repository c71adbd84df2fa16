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

TEST(Variants, EveryKernelIsListedOnceWithAVariantOfThisMachine) {
    const std::set<std::string> known = {"scalar", "sse2", "avx2", "avx512"};
    std::set<std::string> kernels;
    for (const KernelInUse& kernel : KernelsInUse()) {
        EXPECT_TRUE(kernels.insert(kernel.kernel).second) << kernel.kernel;
        EXPECT_EQ(1u, known.count(kernel.variant)) << kernel.kernel << " " << kernel.variant;
        if (CpuInUse() < Cpu::Avx512) {
            EXPECT_STRNE("avx512", kernel.variant) << kernel.kernel;
        }
        if (CpuInUse() < Cpu::Avx2) {
            EXPECT_STRNE("avx2", kernel.variant) << kernel.kernel;
        }
    }
    EXPECT_GT(kernels.size(), 20u);
}

}  // namespace
}  // namespace orlix
