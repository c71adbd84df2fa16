// Ctrl-C and the system's other requests to end. A batch is told so, finishes the image in work, and what has been
// measured comes out; anything else, and a second request, ends the program at once. Either way no unfinished file
// stays.
#pragma once

#include <filesystem>

namespace tool {

// Listens while it lives; one object, of main().
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    // When a batch was stopped: ends the process as the request would have done. Returns otherwise.
    static void Obey();
};

// While one lives, a request sets Stopped() instead of ending the program.
class Stoppable {
public:
    Stoppable();
    ~Stoppable();
    Stoppable(const Stoppable&) = delete;
    Stoppable& operator=(const Stoppable&) = delete;

    static bool Stopped() noexcept;
    static void Stop(int signal) noexcept;  // as the request does
};

// Files that are removed when the program is ended at once: temporary files, and those that the library writes beside
// their final place in the folders.
namespace Unfinished {
void Remember(const std::filesystem::path& file);
void Forget(const std::filesystem::path& file);
void RememberFolder(const std::filesystem::path& folder);
void RemoveAll() noexcept;
}  // namespace Unfinished

}  // namespace tool
