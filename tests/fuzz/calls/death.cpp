#include "fuzz/calls/death.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "fuzz/calls/heap.hpp"
#include "fuzz/calls/world.hpp"

#ifdef _WIN32
#include <windows.h>
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

}  // namespace orlix::fuzz
