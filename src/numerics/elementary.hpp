// Elementary functions with the same bits in every build. Those of C libraries differ in the last place, but thresholds
// and runs must not differ. Arithmetic is IEEE double with round to nearest, without fused operations.
//
// Accuracy: for every finite argument the error is below 0.53 units in the last place: the result is the nearest double
// or, once in some hundreds of cases, its neighbour. It is below 0.76 units where Exp gives a subnormal number. Exact:
// Log(1) = 0, Exp(0) = 1, Sin(+-0) = +-0, Cos(0) = 1. NaN gives NaN. Log and Exp take 3 to 5 ns, Sin and Cos 5 to 13
// ns, and about 50 ns beyond 2e5.
#pragma once

namespace orlix {

double Log(double x);        // natural logarithm: -inf at 0, NaN below 0, inf at inf
double Exp(double x);        // 0 and inf beyond the range of double
double Sin(double radians);  // odd, bit for bit; NaN for infinities
double Cos(double radians);  // even, bit for bit; NaN for infinities

// The angle of a slope, -pi/2 to pi/2, and of the direction (x, y), -pi to pi, within 3 units in the last place. Odd in
// slope and y, bit for bit. (0, 0) gives 0 or, for y = -0, -0, as every x > 0 does; NaN gives NaN. About 60 ns.
double ArcTangent(double slope);
double ArcTangent(double y, double x);

}  // namespace orlix
