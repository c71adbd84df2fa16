// Sums of many doubles with the accuracy of one.
#pragma once

namespace orlix {

// Keeps the rounding error of each addition. The same terms in the same order give the same bits, whether an array is
// read forwards or backwards. An infinite or NaN term makes the value NaN.
class CompensatedSum {
public:
    void Add(double term) {
        const double sum = sum_ + term;
        const double partOfTerm = sum - sum_;
        rest_ += (sum_ - (sum - partOfTerm)) + (term - partOfTerm);
        sum_ = sum;
    }
    double Value() const { return sum_ + rest_; }

private:
    double sum_ = 0.0;
    double rest_ = 0.0;
};

}  // namespace orlix
