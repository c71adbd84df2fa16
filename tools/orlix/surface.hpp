// The surfaces that the library fits to grey levels, by their names on the command line.
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
    virtual int points() const = 0;           // the fewest that a robust fit needs

    // Fits the surface to the pixels of the region in the band to process. `robust`, the probability of a good pixel,
    // asks for the robust fit. S_FALSE if the pixels determine no surface.
    virtual HRESULT Fit(const orlix::ComPtr<IOrlixImageProcess>& image, std::optional<double> robust) = 0;
    // Subtracts the surface from these pixels and adds `mean`.
    virtual void Subtract(const orlix::ComPtr<IOrlixImageProcess>& image, double mean) const = 0;

    virtual double average() const = 0;  // of the pixels it was fitted to
    virtual std::vector<std::pair<const char*, double>> Coefficients() const = 0;

    // Slopes of a plane along x and y, in grey levels per pixel; 0 for other surfaces.
    virtual std::pair<double, double> Slopes() const = 0;
    // Radius of curvature at the top of a hemisphere, in square pixels per grey level; 0 for other surfaces.
    virtual double ApexRadius() const = 0;
};

std::vector<std::string> SurfaceNames();
std::string SurfaceList();                                    // the names, separated by commas
std::unique_ptr<Surface> MakeSurface(std::string_view name);  // throws std::invalid_argument for other names

}  // namespace tool
