#include "confidence.hpp"

#define BOOST_MATH_DISABLE_DEPRECATED_03_WARNING  // it takes GCC for Windows for a compiler without C++11
#include <boost/math/distributions/students_t.hpp>

#include <cmath>

namespace tool {

// In double throughout and without its last digits, in which the systems' logarithms and powers differ.
double StudentT95(size_t n) {
    using Policy = boost::math::policies::policy<boost::math::policies::promote_double<false>>;
    const boost::math::students_t_distribution<double, Policy> distribution(static_cast<double>(n - 1));
    return std::round(boost::math::quantile(distribution, 0.975) * 1e9) / 1e9;
}

}  // namespace tool
