// Elementary functions with the same bits on every build. The C library's differ between platforms in the last place, and
// thresholds and runs must not. Arithmetic is IEEE double with round to nearest; errors stay below one unit in the last
// place (for Sin and Cos: for |x| up to 1e5, beyond which they are still defined, for every finite x).
#pragma once

namespace orlix {

double Log(double x);        // natural logarithm: -inf at 0, NaN below 0, inf at inf
double Exp(double x);        // 0 and inf beyond the range of double
double Sin(double radians);  // NaN for infinities
double Cos(double radians);

}  // namespace orlix
