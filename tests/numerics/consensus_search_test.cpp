#include "numerics/consensus_search.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

using Lasts = SearchBudget::Lasts;
constexpr SearchBudget kPlenty = {Lasts::WholeSearch, int64_t{1} << 60, 1};

TEST(ConsensusSearch, TrialLimitFollowsTheRule) {
    EXPECT_EQ(200, TrialLimit(0.5, 3));
    EXPECT_EQ(26, TrialLimit(0.99, 3));
    EXPECT_EQ(25600, TrialLimit(0.5, 10));
    EXPECT_EQ(25e6, TrialLimit(0.01, 3));
    EXPECT_EQ(0.99, UsableProbability(1));
    EXPECT_EQ(0.5, UsableProbability(0.5));
}

// Trials of a search for three of 1000 data, the trial `improving` of which improves (0: none does).
int64_t Trials(double p, const SearchBudget& budget, int64_t improving = 0, int64_t spentAtOnce = 0) {
    ConsensusSearch search(1000, p, 3, budget);
    search.Spend(spentAtOnce);
    int64_t indices[3], trials = 0;
    while (search.Draw(indices))
        if (++trials == improving) search.Improved();
    EXPECT_FALSE(search.Draw(indices)) << "over is over";
    return trials;
}

TEST(ConsensusSearch, EndsAfterTrialsInVainInARow) {
    EXPECT_EQ(26, Trials(0.99, kPlenty));
    EXPECT_EQ(46, Trials(0.99, kPlenty, 20));
    EXPECT_EQ(52, Trials(0.99, kPlenty, 26)) << "the last one that may improve";
}

TEST(ConsensusSearch, EndsWhenItsBudgetIsSpent) {
    EXPECT_EQ(250, Trials(0.01, {Lasts::WholeSearch, 1000, 4}));
    EXPECT_EQ(225, Trials(0.01, {Lasts::WholeSearch, 1000, 4}, 0, 100));
    EXPECT_EQ(250, Trials(0.01, {Lasts::WholeSearch, 1000, 4}, 100));
    EXPECT_EQ(350, Trials(0.01, {Lasts::UntilImprovement, 1000, 4}, 100));
    EXPECT_EQ(200, Trials(0.01, {Lasts::WholeSearch, 10, 4})) << "these are free";
}

TEST(ConsensusSearch, DrawsTheNumbersOfTheGenerator) {
    UniformGenerator random(-1);
    ConsensusSearch search(int64_t{1} << 40, 0.5, 2, kPlenty);
    int64_t indices[2];
    for (int trial = 0; trial < 50; ++trial) {
        ASSERT_TRUE(search.Draw(indices));
        for (const int64_t index : indices) EXPECT_EQ(static_cast<int64_t>(random() * 0x1p40), index);
    }
}

// Worked out with rational numbers from the three congruences, table and start that the header states.
TEST(UniformGenerator, NumbersOfSeedMinusOne) {
    constexpr double kFirst[] = {0x1.8f674dc41104ap-2, 0x1.5e830f3a84593p-3, 0x1.48e68b071654cp-1,
                                 0x1.bcda3367872bfp-1, 0x1.5d5240effac3ap-3, 0x1.62ffc995ea2eap-1};
    UniformGenerator random(-1);
    for (const double number : kFirst) EXPECT_DOUBLE_EQ(number, random());
    for (int i = 6; i < 999; ++i) random();
    EXPECT_DOUBLE_EQ(0x1.e16d0a35d7738p-1, random());
    for (int i = 1000; i < 99999; ++i) {
        const double number = random();
        ASSERT_TRUE(number >= 0 && number < 1);
    }
    EXPECT_DOUBLE_EQ(0x1.9912966df0e48p-4, random());
    EXPECT_NE(kFirst[0], UniformGenerator(-2)());
}

}  // namespace
}  // namespace orlix
