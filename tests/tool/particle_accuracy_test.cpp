// What orlix particles finds in specimens, beside what is there: coarse bounds for the table of docs/accuracy.md.
#include "support/found_and_true.hpp"

#include <gtest/gtest.h>

#include <orlix/client.hpp>

namespace tool {
namespace {

TEST(ParticleAccuracy, IsAboutThatOfTheTable) {
    const orlix::Apartment apartment;
    for (const SpecimenCase& of : SpecimenCases()) {
        SCOPED_TRACE(of.name);
        const FoundAndTrue figures = Compare(of, 3);
        const bool together = of.specimen.gap < 0 && !of.settings.split;
        const bool uneven = of.specimen.backgroundSpan > 50 && !of.settings.flatten;
        if (together || uneven) {  // what --split and --flatten are for
            EXPECT_LT(figures.Share(), 0.97);
            EXPECT_GT(figures.others, 0);
            continue;
        }
        EXPECT_GE(figures.Share(), 0.98);
        EXPECT_LE(static_cast<double>(figures.others), 0.01 * static_cast<double>(figures.particles));
        EXPECT_NEAR(0, figures.totalArea, 0.025);
        EXPECT_NEAR(0, figures.bias, 0.025);
        EXPECT_LT(figures.scatter, 0.1);
        EXPECT_LT(figures.distance, of.specimen.gap < 0 ? 0.5 : 0.3);
    }
}

}  // namespace
}  // namespace tool
