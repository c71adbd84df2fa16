#include "fuzz/calls/watchdog.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

#include "fuzz/calls/world.hpp"

namespace orlix::fuzz {
namespace {

constexpr double kLongSeconds = 5, kMostSeconds = 100, kMostWaiting = 900;

// The place does not change while the call is at work, except for a client's name.
void Say(const char* what, double seconds) {
    std::printf("%s: %s::%s for %.0f s, seed %llu, step %d, called last: %s\n", what, place.interfaceName, place.method,
                seconds, static_cast<unsigned long long>(place.sequence), place.step, place.client);
    std::fflush(stdout);
}

[[noreturn]] void Watch() {
    uint64_t seen = turns;
    double since = ProcessorSeconds();
    std::time_t sinceTime = std::time(nullptr);
    bool said = false;
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const double now = ProcessorSeconds();
        const std::time_t time = std::time(nullptr);
        if (const uint64_t turn = turns; turn != seen || !*place.method) {  // not in a call
            seen = turn;
            since = now;
            sinceTime = time;
            said = false;
            continue;
        }
        const double seconds = now - since;
        if (seconds >= kLongSeconds && !said) Say("long", seconds);
        said = said || seconds >= kLongSeconds;
        if (seconds < kMostSeconds && std::difftime(time, sinceTime) < kMostWaiting) continue;
        Say("hangs", seconds);
        std::_Exit(4);
    }
}

}  // namespace

void WatchCalls() { std::thread(&Watch).detach(); }

}  // namespace orlix::fuzz
