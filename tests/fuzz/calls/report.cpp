#include "fuzz/calls/report.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

#include "fuzz/calls/heap.hpp"
#include "fuzz/calls/world.hpp"

#ifdef _WIN32
#include <windows.h>
#else
// The counters of all edges side by side, where the compiler counts them.
extern "C" [[gnu::weak]] uint8_t __start___sancov_cntrs[];
extern "C" [[gnu::weak]] uint8_t __stop___sancov_cntrs[];
#endif
#ifdef ORLIX_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace orlix::fuzz {
namespace {

void PrintPlace() {
    std::fflush(stdout);
    std::fprintf(stderr, "died: seed %llu, step %d, depth %d, in %s::%s, called last: %s\n",
                 static_cast<unsigned long long>(place.sequence), place.step, place.depth, place.interfaceName,
                 place.method, place.client);
    std::fflush(stderr);
}

[[maybe_unused]] void OnSignal(int signal) {
    PrintPlace();
    std::fprintf(stderr, "signal %d\n", signal);
    std::_Exit(3);
}

#ifdef _WIN32
LONG WINAPI OnException(EXCEPTION_POINTERS* exception) {
    std::fprintf(stderr, "exception 0x%08lX at %p\n", exception->ExceptionRecord->ExceptionCode,
                 exception->ExceptionRecord->ExceptionAddress);
    PrintPlace();
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
}
#endif

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

// Of all sequences so far.
uint64_t ReachedEdges() {
#ifdef _WIN32
    return 0;
#else
    static std::vector<bool> reached;
    const uint8_t* const counters = __start___sancov_cntrs;
    if (!counters) return 0;
    reached.resize(static_cast<size_t>(__stop___sancov_cntrs - __start___sancov_cntrs));
    for (size_t i = 0; i < reached.size(); ++i)
        if (counters[i]) reached[i] = true;
    return static_cast<uint64_t>(std::count(reached.begin(), reached.end(), true));
#endif
}

}  // namespace

#ifdef ORLIX_SANITIZED
// Too large an allocation fails, and an abort is reported with the stack.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1:handle_abort=1"; }
#endif

void ReportDeath() {
#ifdef _WIN32
    SetUnhandledExceptionFilter(&OnException);
    std::signal(SIGABRT, &OnSignal);
#elif defined(ORLIX_SANITIZED)
    __sanitizer_set_death_callback(&PrintPlace);
#else
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) std::signal(signal, &OnSignal);
#endif
}

void WatchCalls() { std::thread(&Watch).detach(); }

void PrintProgress() {
    const Tally& tally = TallyOfProcess();
    std::printf("progress: cpu=%.1f sequences=%llu calls=%llu callbacks=%llu reentrant=%llu edges=%llu slow=%llu\n",
                ProcessorSeconds(), static_cast<unsigned long long>(tally.sequences),
                static_cast<unsigned long long>(tally.calls), static_cast<unsigned long long>(tally.callbacks),
                static_cast<unsigned long long>(tally.reentrantCalls), static_cast<unsigned long long>(ReachedEdges()),
                static_cast<unsigned long long>(tally.slowCalls));
    std::fflush(stdout);
}

}  // namespace orlix::fuzz
