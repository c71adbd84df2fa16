#include "platform/file_io.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/native/file_path.hpp"
#include "platform/native/system_calls.hpp"

namespace orlix {
namespace {

// The most that one call reads or writes; the system's own limit is just below 2^31.
constexpr size_t kLargestTransfer = size_t{1} << 30;

std::string FolderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == path.npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Creates a file with an unused name; `path` receives the name.
int CreateBeside(const std::string& folder, std::string& path) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        char name[64];
        std::snprintf(name, sizeof name, "/.orlix-%ld-%u.tmp", static_cast<long>(::getpid()), counter++);
        path = folder + name;
        const int file = Retried([&] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666); });
        if (file >= 0 || errno != EEXIST) return file;
    }
    return -1;
}

bool WriteAll(int file, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            Retried([&] { return ::write(file, bytes.data(), std::min(bytes.size(), kLargestTransfer)); });
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<size_t>(written));
    }
    return true;
}

// Makes the renaming survive a power failure. Some file systems cannot do that, which is no reason to fail.
void FlushFolder(const std::string& folder) {
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) ::fsync(descriptor.number());
}

}  // namespace

ReadStatus ReadWholeFile(WideStringView path, FileContent& content, size_t maximum) {
    content = {};
    const std::string name = NativePath(path);
    if (name.empty()) return ReadStatus::CannotOpen;

    // Not blocking: opening a pipe would otherwise wait for its writer.
    const Descriptor file(Retried([&] { return ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    struct stat status;
    if (!file || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return ReadStatus::CannotOpen;

    const uint64_t wanted = std::min<uint64_t>(static_cast<uint64_t>(status.st_size), maximum);
    if (wanted > std::numeric_limits<size_t>::max() / 2) throw std::bad_alloc();
    FileContent read(static_cast<size_t>(wanted));
    size_t done = 0;
    while (done < wanted) {
        const size_t step = std::min(static_cast<size_t>(wanted) - done, kLargestTransfer);
        const ssize_t got = Retried([&] { return ::read(file.number(), read.data() + done, step); });
        if (got < 0) return ReadStatus::CannotRead;
        if (got == 0) break;
        done += static_cast<size_t>(got);
    }
    read.Shorten(done);
    content = std::move(read);
    return ReadStatus::Done;
}

bool WriteWholeFile(WideStringView path, std::span<const uint8_t> bytes) {
    std::string place = NativePath(path);
    if (place.empty()) return false;

    struct stat old;
    const bool replaces = ::stat(place.c_str(), &old) == 0;
    if (replaces) {
        if (!S_ISREG(old.st_mode) || ::access(place.c_str(), W_OK) != 0) return false;
        char* target = ::realpath(place.c_str(), nullptr);
        if (!target) return false;
        place = target;
        std::free(target);
    }

    const std::string folder = FolderOf(place);
    std::string temporary;
    Descriptor file(CreateBeside(folder, temporary));
    if (!file) return false;
    const bool complete = (!replaces || ::fchmod(file.number(), old.st_mode & 07777) == 0) &&
                          WriteAll(file.number(), bytes) && Retried([&] { return ::fsync(file.number()); }) == 0;
    // Closed before renaming: network file systems report a full disk only now.
    if (!file.Close() || !complete || ::rename(temporary.c_str(), place.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    FlushFolder(folder);
    return true;
}

}  // namespace orlix
