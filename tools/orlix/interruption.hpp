// Ctrl-C and the system's other requests to end. A batch finishes its current image and outputs what it has measured.
// All other work ends at once, and so does a batch on a second request. No unfinished file is left behind either way.
#pragma once

#include <filesystem>

namespace tool {

// Listens for requests during its lifetime; main() has the only object.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // Ends the process as the request would have done, if a batch was stopped; otherwise returns.
    static void Obey();
};

// During its lifetime a request sets Stopped() instead of ending the program.
class Stoppable {
public:
    Stoppable();
    ~Stoppable();
    Stoppable(const Stoppable&) = delete;
    Stoppable& operator=(const Stoppable&) = delete;

    static bool Stopped() noexcept;
    static void Stop(int signal) noexcept;  // acts like a request
};

// Files that are removed if the program ends at once: temporary files, and those that the library writes into the given
// folders before it moves them to their final names.
namespace Unfinished {
void Remember(const std::filesystem::path& file);
void Forget(const std::filesystem::path& file);
void RememberFolder(const std::filesystem::path& folder);
void RemoveAll() noexcept;
}  // namespace Unfinished

}  // namespace tool
