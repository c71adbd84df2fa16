// Elementary functions with the same bits on every build. The C library's differ between platforms in the last place,
// and thresholds and runs must not. Arithmetic is IEEE double with round to nearest, without fused operations.
//
// Accuracy: for every finite argument, the largest included, the result is less than 0.53 units in the last place from
// the true value: the nearest double or, in one case of some hundreds, its neighbour. 0.76 units where Exp gives a
// subnormal number. Exact: Log(1) = 0, Exp(0) = 1, Sin(+-0) = +-0, Cos(0) = 1. NaN gives NaN. Log and Exp take some 3
// to 5 ns, Sin and Cos 5 to 13 ns, beyond 2e5 some 50 ns.
#pragma once

namespace orlix {

double Log(double x);        // natural logarithm: -inf at 0, NaN below 0, inf at inf
double Exp(double x);        // 0 and inf beyond the range of double
double Sin(double radians);  // odd, bit for bit; NaN for infinities
double Cos(double radians);  // even, bit for bit; NaN for infinities

// The angle of a slope, -pi/2 to pi/2, and of the direction (x, y), -pi to pi: within 3 units in the last place. Odd in
// slope and y, bit for bit. (0, 0) gives 0 or, with y = -0, -0, as every x > 0 does; NaN gives NaN. Some 60 ns.
double ArcTangent(double slope);
double ArcTangent(double y, double x);

}  // namespace orlix
