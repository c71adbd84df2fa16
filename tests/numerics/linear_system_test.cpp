#include "numerics/linear_system.hpp"

#include "numerics/shortest_solution.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

using Numbers = std::vector<double>;

Numbers SolvedByLu(const Numbers& matrix, const Numbers& b) {
    Numbers x(b.size());
    LuDecomposition(matrix, b.size()).Solve(b, x);
    return x;
}

Numbers SolvedBySingularValues(const Numbers& matrix, const Numbers& b, size_t columns) {
    Numbers x(columns);
    SingularValueDecomposition(matrix, b.size(), columns).Solve(b, x);
    return x;
}

TEST(DoublePairs, KeepWhatADoubleLoses) {
    const DoublePair sum = DoublePair(1.0) + DoublePair(0x1p-80);
    EXPECT_EQ(1.0, sum.high);
    EXPECT_EQ(0x1p-80, sum.low);
    EXPECT_EQ(0x1p-80, static_cast<double>(sum - 1.0));
    // (2^52 + 1)^2 = 2^104 + 2^53 + 1
    const DoublePair square = ExactProduct(0x1p52 + 1, 0x1p52 + 1);
    EXPECT_EQ(1.0, static_cast<double>(square - 0x1p104 - 0x1p53));
    const DoublePair third = DoublePair(1.0) / 3;
    EXPECT_LE(std::fabs(static_cast<double>(third * 3 - 1.0)), 0x1p-104);
    const DoublePair product = third * third * 9;
    EXPECT_LE(std::fabs(static_cast<double>(product - 1.0)), 0x1p-100);
}

TEST(Lu, ExchangesRowsAndReplacesAPivotOfExactlyZero) {
    // y + z = 5, x + 2y = 5, 4x - z = 1: x = 1, y = 2, z = 3.
    EXPECT_EQ((Numbers{1, 2, 3}), SolvedByLu({0, 1, 1, 1, 2, 0, 4, 0, -1}, {5, 5, 1}));
    EXPECT_EQ((Numbers{1 - 1e20, 1e20}), SolvedByLu({1, 1, 1, 1}, {1, 2}));
    EXPECT_EQ((Numbers{3e20}), SolvedByLu({0}, {3}));
    EXPECT_DOUBLE_EQ(std::sqrt(0.25 + 0.0625), LuDecomposition(Numbers{2, 0, 0, 4}, 2).NormOfInverse());
}

TEST(SingularValues, OfMatricesWorkedOutByHand) {
    // A^T A = (25 20; 20 25): 45 and 5.
    const SingularValueDecomposition decomposition(Numbers{3, 0, 4, 5}, 2, 2);
    Numbers values(decomposition.singularValues().begin(), decomposition.singularValues().end());
    std::sort(values.begin(), values.end());
    EXPECT_DOUBLE_EQ(std::sqrt(5.0), values[0]);
    EXPECT_DOUBLE_EQ(std::sqrt(45.0), values[1]);
    EXPECT_EQ(2u, decomposition.Rank());
    EXPECT_EQ(1u, SingularValueDecomposition(Numbers{1, 2, 2, 4}, 2, 2).Rank());
    EXPECT_EQ(0u, SingularValueDecomposition(Numbers{0, 0, 0, 0}, 2, 2).Rank());
}

void ExpectNear(const Numbers& want, const Numbers& got, double tolerance) {
    ASSERT_EQ(want.size(), got.size());
    for (size_t i = 0; i < want.size(); ++i) EXPECT_NEAR(want[i], got[i], tolerance) << i;
}

Numbers SolvedWithoutRounding(const Numbers& matrix, const Numbers& b) {
    std::vector<Integer> integers;
    for (const double entry : matrix) integers.push_back(static_cast<int64_t>(entry));
    Numbers x(matrix.size() / b.size());
    SolveShortest(integers, b, x);
    return x;
}

TEST(ShortestSolution, OfSystemsWorkedOutByHand) {
    const struct {
        const char* what;
        Numbers matrix, b, x;
    } cases[] = {{"fewer equations", {1, 1}, {2}, {1, 1}},
                 {"the same twice", {1, 2, 2, 4}, {1, 2}, {0.2, 0.4}},
                 {"a mean", {1, 1}, {1, 2}, {1.5}},
                 {"nothing", {0, 0, 0, 0}, {1, 2}, {0, 0}},
                 {"zeros", {3, 4}, {0}, {0, 0}}};
    for (const auto& [what, matrix, b, x] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(x, SolvedWithoutRounding(matrix, b));
        ExpectNear(x, SolvedBySingularValues(matrix, b, x.size()), 1e-15);
    }
    ExpectNear({1, 0}, SolvedBySingularValues({1, 0, 0, 0.9e-12}, {1, 1}, 2), 0);        // below the cut
    ExpectNear({1, 0.5e12}, SolvedBySingularValues({1, 0, 0, 2e-12}, {1, 1}, 2), 1e-2);  // above it
    EXPECT_EQ((Numbers{1e-300, 3e38}), SolvedWithoutRounding({1, 0, 0, 1}, {1e-300, 3e38}));
    // Two equations that differ in the 62nd bit.
    EXPECT_EQ((Numbers{-0x1p-126 - 0x1p-128, 1.25}),
              SolvedWithoutRounding({0x1p62, 0, 0x1p62, 1}, {-0x1p-64 - 0x1p-66, 1.25 - 0x1p-64 - 0x1p-66}));
}

TEST(BothRoads, AgreeOnRandomSystemsOfEverySize) {
    std::mt19937 random(1);
    const auto next = [&] { return static_cast<double>(static_cast<int32_t>(random())) * 0x1p-31; };
    for (size_t n = 1; n <= kMostUnknowns; ++n)
        for (int repetition = 0; repetition < 20; ++repetition) {
            Numbers matrix(n * n), x(n), b(n, 0.0);
            for (double& entry : matrix) entry = next();
            for (double& entry : x) entry = next();
            for (size_t i = 0; i < n; ++i)
                for (size_t j = 0; j < n; ++j) b[i] += matrix[i * n + j] * x[j];
            const double allowed = 1e-14 * LuDecomposition(matrix, n).NormOfInverse();
            ExpectNear(x, SolvedByLu(matrix, b), allowed);
            ExpectNear(x, SolvedBySingularValues(matrix, b, n), 10 * allowed);
        }
}

// Hilbert's matrix of order 8 has a condition of 1.5e10: five digits are right without refinement.
TEST(Refinement, SolvesAnIllConditionedSystemExactly) {
    constexpr size_t kSize = 8;
    std::vector<DoublePair> matrix(kSize * kSize), b(kSize), x(kSize);
    for (size_t i = 0; i < kSize; ++i)
        for (size_t j = 0; j < kSize; ++j) {
            matrix[i * kSize + j] = DoublePair(1.0) / static_cast<double>(i + j + 1);
            b[i] += matrix[i * kSize + j] * static_cast<double>(j + 1);
        }
    SolveRefined(matrix, b, x);
    for (size_t j = 0; j < kSize; ++j) EXPECT_EQ(static_cast<double>(j + 1), static_cast<double>(x[j])) << j;
}

TEST(Refinement, TakesTheSingularValuesWhereTheMatrixIsSingular) {
    const std::vector<DoublePair> matrix = {1.0, 2.0, 2.0, 4.0}, b = {1.0, 2.0};
    std::vector<DoublePair> x(2);
    SolveRefined(matrix, b, x);
    EXPECT_DOUBLE_EQ(0.2, static_cast<double>(x[0]));
    EXPECT_DOUBLE_EQ(0.4, static_cast<double>(x[1]));
}

// ----------------------------------------------------------------------------------------------- without any rounding

TEST(Integers, AreExactOfAnySize) {
    Integer factorial = 1, power = 1;
    for (int i = 1; i <= 60; ++i) {
        factorial = factorial * Integer(-i);
        power = power * Integer(int64_t{1} << 40);
    }
    Integer back = factorial;
    for (int i = 60; i > 1; --i) back = back.DividedExactly(-i);
    EXPECT_TRUE((back + Integer(1)).IsZero());  // 60 signs and the 1 that was left
    EXPECT_TRUE(((factorial - power) - (factorial - power)).IsZero());
    EXPECT_TRUE((factorial * power).DividedExactly(power * power - power * (power - factorial)).IsZero() == false);
    int exponent = 0;
    const DoublePair pair = ((power + 1) * (power - 1)).ToPair(exponent);  // 2^4800 - 1
    EXPECT_EQ(0x1p32, pair.high);
    EXPECT_EQ(4800 - 32, exponent);
    EXPECT_TRUE((Integer::Scaled(-0.375, -3) + Integer(3)).IsZero());
    EXPECT_TRUE((Integer::Scaled(0x1p200, 100) - Integer::Scaled(0x1p100, 0)).IsZero());
}

}  // namespace
}  // namespace orlix
