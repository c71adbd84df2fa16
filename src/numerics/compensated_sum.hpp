// Sums of many doubles with the accuracy of one.
#pragma once

namespace orlix {

// Keeps what each addition rounds away. The same terms in the same order give the same bits, forwards or backwards
// through an array. Infinite or NaN terms make the value NaN.
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
