#include "numerics/consensus_search.hpp"

#include <algorithm>
#include <cmath>

namespace orlix {

double UsableProbability(double probability) { return std::min(probability, 0.99); }

double TrialLimit(double p, int drawn) {
    double power = p;
    for (int i = 1; i < drawn; ++i) power *= p;
    return std::ceil(25.0 / power);
}

bool ConsensusSearch::Draw(std::span<int64_t> indices) {
    constexpr int64_t kFreeTrials = 200;
    if (!(inVain_ < limit_)) return false;
    ++inVain_;
    if (++trials_ > kFreeTrials && spent_ + trials_ * budget_.ofATrial > budget_.total) return false;
    for (int64_t& index : indices) index = static_cast<int64_t>(random_() * count_);
    return true;
}

void ConsensusSearch::Improved() {
    inVain_ = 0;
    if (budget_.lasts == SearchBudget::Lasts::UntilImprovement) trials_ = spent_ = 0;
}

}  // namespace orlix
