#include "interruption.hpp"

#include "console.hpp"

#include <atomic>
#include <csignal>
#include <iostream>
#include <mutex>
#include <set>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tool {

namespace {

std::atomic<int> stoppables{0};
std::atomic<int> stopSignal{0};

// Used by a thread that may outlive main().
struct Registry {
    std::mutex mutex;
    std::set<std::filesystem::path> files, folders;
};
Registry& TheRegistry() {
    static Registry* const registry = new Registry;
    return *registry;
}

std::string ProcessNumber() {
#ifdef _WIN32
    return std::to_string(GetCurrentProcessId());
#else
    return std::to_string(getpid());
#endif
}

// Handles a request, in a thread of its own. Returns whether the program continues.
bool Requested(int signal) {
    if (stoppables > 0 && stopSignal == 0) {
        Stoppable::Stop(signal);
        std::cerr << "\norlix: stopping after this image; the results so far follow. Once more stops at once."
                  << std::endl;
        return true;
    }
    Unfinished::RemoveAll();
    return false;
}

#ifdef _WIN32

BOOL WINAPI Listen(DWORD event) {
    if (!Requested(SIGINT)) TerminateProcess(GetCurrentProcess(), kInterrupted);
    // When the console is closed, the system ends the process as soon as this handler returns: main() has until then.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

#else

[[noreturn]] void EndBy(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    kill(getpid(), signal);
    for (;;) pause();
}

#endif

}  // namespace

#ifdef _WIN32

Interruption::Interruption() { SetConsoleCtrlHandler(Listen, TRUE); }
Interruption::~Interruption() { SetConsoleCtrlHandler(Listen, FALSE); }
void Interruption::Obey() {}

#else

Interruption::Interruption() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old = {};
        sigaction(signal, nullptr, &old);
        if (old.sa_handler != SIG_IGN) sigaddset(&set, signal);  // nohup, and background jobs of some shells
    }
    pthread_sigmask(SIG_BLOCK, &set, nullptr);  // in all threads: they inherit it
    std::thread([set] {
        for (;;) {
            int signal = 0;
            if (sigwait(&set, &signal) == 0 && !Requested(signal)) EndBy(signal);
        }
    }).detach();
}

Interruption::~Interruption() {}

void Interruption::Obey() {
    if (stopSignal != 0) EndBy(stopSignal);
}

#endif

Stoppable::Stoppable() { ++stoppables; }
Stoppable::~Stoppable() { --stoppables; }
bool Stoppable::Stopped() noexcept { return stopSignal != 0; }
void Stoppable::Stop(int signal) noexcept { stopSignal = signal; }

void Unfinished::Remember(const std::filesystem::path& file) {
    const std::lock_guard lock(TheRegistry().mutex);
    TheRegistry().files.insert(file);
}

void Unfinished::Forget(const std::filesystem::path& file) {
    const std::lock_guard lock(TheRegistry().mutex);
    TheRegistry().files.erase(file);
}

void Unfinished::RememberFolder(const std::filesystem::path& folder) {
    const std::lock_guard lock(TheRegistry().mutex);
    TheRegistry().folders.insert(folder.empty() ? std::filesystem::path(".") : folder);
}

void Unfinished::RemoveAll() noexcept try {
    const std::lock_guard lock(TheRegistry().mutex);
    std::error_code ignored;
    for (const std::filesystem::path& file : TheRegistry().files) std::filesystem::remove(file, ignored);
    const std::string mark = "orlix-" + ProcessNumber() + "-";
    for (const std::filesystem::path& folder : TheRegistry().folders)
        for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
            const std::string name = Utf8(entry.path().filename());
            if (name.find(mark) <= 1 && name.ends_with(".tmp")) std::filesystem::remove(entry.path(), ignored);
        }
} catch (...) {
    // Without memory the files are left where they are.
}

}  // namespace tool
