// Student's t distribution, from a library that takes a while to compile.
#pragma once

#include <cstddef>

namespace tool {

// Half the width of the interval that holds the mean of n >= 2 values with a probability of 95 %, in standard errors:
// the quantile of Student's t (two-sided) for n - 1 degrees of freedom.
double StudentT95(size_t n);

}  // namespace tool
