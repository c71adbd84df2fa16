// The surfaces that the library fits to grey levels, as the command line names them.
#pragma once

#include <orlix/com_ptr.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

class Surface {
public:
    virtual ~Surface() = default;

    virtual const char* id() const = 0;       // "plane"
    virtual const char* formula() const = 0;  // "z = alpha x + beta y + gamma"
    virtual int points() const = 0;           // that a robust fit needs at least

    // To the pixels of the region in the band to process; with a probability of a good pixel the robust fit. S_FALSE
    // when the pixels determine no surface.
    virtual HRESULT Fit(const orlix::ComPtr<IOrlixImageProcess>& image, std::optional<double> robust) = 0;
    // Pixels less the surface, plus `mean`.
    virtual void Subtract(const orlix::ComPtr<IOrlixImageProcess>& image, double mean) const = 0;

    virtual double average() const = 0;  // of the pixels it was fitted to
    virtual std::vector<std::pair<const char*, double>> Coefficients() const = 0;

    // Grey levels a pixel along x and y, of a plane; 0 for others.
    virtual std::pair<double, double> Slopes() const = 0;
    // At the top of a hemisphere, in square pixels a grey level; 0 for others.
    virtual double ApexRadius() const = 0;
};

std::vector<std::string> SurfaceNames();
std::string SurfaceList();                                    // with commas
std::unique_ptr<Surface> MakeSurface(std::string_view name);  // one of these

}  // namespace tool
