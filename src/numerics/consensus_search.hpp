// Search by random sampling for the model that the better part of the data agrees with: random sample consensus
// (Fischler and Bolles 1981) with trimmed squares for a score (Rousseeuw 1984).
#pragma once

#include <cstdint>
#include <span>

#include "numerics/uniform_generator.hpp"

namespace orlix {

// A probability P of data to fit the model, as the search counts with it: at most 0.99.
double UsableProbability(double probability);

// ceil(25 / p^drawn): trials in a row without improvement that end a search.
double TrialLimit(double p, int drawn);

// What trials may cost in any case, as TrialLimit has no bound for small p. The unit is one datum looked at. A trial
// costs ofATrial, and what is reported with ConsensusSearch::Spend; the 200 first trials are free.
struct SearchBudget {
    enum class Lasts { UntilImprovement, WholeSearch };
    Lasts lasts;
    int64_t total;
    int64_t ofATrial;
};

// The trials of one search among n data, of which k determine a model:
//
//     ConsensusSearch search(n, p, k, budget);
//     while (!perfect && search.Draw(indices)) {
//         ... the model through the data of these indices, and its score; search.Improved() if it is the best so far
//     }
//
// The same n, k and answers give the same trials on every build.
class ConsensusSearch {
public:
    // p is a UsableProbability.
    ConsensusSearch(int64_t n, double p, int k, const SearchBudget& budget)
        : count_(static_cast<double>(n)), limit_(TrialLimit(p, k)), budget_(budget) {}

    // Begins a trial: fills the indices with trunc(u n), u of UniformGenerator(-1). False when the search is over.
    bool Draw(std::span<int64_t> indices);
    // The trial found the best model so far.
    void Improved();
    void Spend(int64_t cost) { spent_ += cost; }

private:
    double count_;
    double limit_;
    SearchBudget budget_;
    UniformGenerator random_{-1};
    double inVain_ = 0;   // trials begun since the last one that improved
    int64_t trials_ = 0;  // begun since the budget was full
    int64_t spent_ = 0;
};

}  // namespace orlix
