// Measures the figures of docs/accuracy.md for particles: found in specimens, beside those that are there.
#include "support/found_and_true.hpp"

#include <orlix/client.hpp>

#include <cstdio>

int main() {
    const orlix::Apartment apartment;
    std::puts(
        "| specimens | particles | found | others | total area, % | area of one, % | position, pixels |\n"
        "|---|---|---|---|---|---|---|");
    for (const tool::SpecimenCase& of : tool::SpecimenCases()) {
        const tool::FoundAndTrue figures = tool::Compare(of, 20);
        std::printf("| %s | %lld | %.2f %% | %lld | %+.2f | %+.2f (%.2f) | %.3f |\n", of.name.c_str(),
                    static_cast<long long>(figures.particles), 100 * figures.Share(),
                    static_cast<long long>(figures.others), 100 * figures.totalArea, 100 * figures.bias,
                    100 * figures.scatter, figures.distance);
    }
}
