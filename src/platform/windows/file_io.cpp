#include "platform/file_io.hpp"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <new>
#include <string>
#include <utility>

namespace orlix {
namespace {

constexpr size_t kLargestTransfer = size_t{1} << 30;  // for one call, because lengths have 32 bits

class Handle {
public:
    explicit Handle(HANDLE handle) noexcept : handle_(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Close(); }

    HANDLE get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
    bool Close() noexcept {
        const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
        return handle == INVALID_HANDLE_VALUE || ::CloseHandle(handle);
    }

private:
    HANDLE handle_;
};

bool StartsWith(const std::wstring& text, std::wstring_view start) { return text.compare(0, start.size(), start) == 0; }

// The absolute path. If it, or the name of a temporary file in the same folder, would reach the classical limit (260
// with the terminator), it has the form without that limit. Empty for a path that names no file: an empty path, one
// with a character 0, a device ("NUL", "COM1", "\\.\PhysicalDrive0").
std::wstring NativePath(WideStringView path) {
    const std::wstring given(path);
    if (given.empty() || given.find(L'\0') != given.npos) return {};
    if (StartsWith(given, L"\\\\?\\")) return given;  // the caller's own choice, not to be interpreted

    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) return {};
        const bool fits = length < full.size();
        full.resize(length);  // the length excludes the terminator if the path fits, and includes it if not
        if (fits) break;
    }
    if (StartsWith(full, L"\\\\.\\")) return {};
    constexpr size_t kShort = 200;
    if (full.size() <= kShort) return full;
    return StartsWith(full, L"\\\\") ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

// Creates a file with an unused name in the folder of `place`; `path` receives the name.
HANDLE CreateBeside(const std::wstring& place, std::wstring& path) {
    static std::atomic<unsigned> counter{0};
    const std::wstring folder = place.substr(0, place.find_last_of(L"\\/") + 1);
    for (int attempt = 0; attempt < 100; ++attempt) {
        path =
            folder + L"orlix-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(counter++) + L".tmp";
        const HANDLE file =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE || ::GetLastError() != ERROR_FILE_EXISTS) return file;
    }
    return INVALID_HANDLE_VALUE;
}

bool WriteAll(HANDLE file, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const DWORD step = static_cast<DWORD>(std::min(bytes.size(), kLargestTransfer));
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), step, &written, nullptr) || written == 0) return false;
        bytes = bytes.subspan(written);
    }
    return true;
}

// The target of a link, which keeps the link itself; the path itself if it is no link or cannot be followed.
std::wstring TargetOf(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return path;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle file(::CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return path;
    std::wstring target(32768, L'\0');  // the longest path there is
    const DWORD length =
        ::GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), FILE_NAME_NORMALIZED);
    if (length == 0 || length >= target.size()) return path;
    target.resize(length);
    return target;
}

}  // namespace

ReadStatus ReadWholeFile(WideStringView path, FileContent& content, size_t maximum) {
    content = {};
    const std::wstring name = NativePath(path);
    if (name.empty()) return ReadStatus::CannotOpen;

    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle file(::CreateFileW(name.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size;
    if (!file || ::GetFileType(file.get()) != FILE_TYPE_DISK || !::GetFileSizeEx(file.get(), &size))
        return ReadStatus::CannotOpen;

    const uint64_t wanted = std::min<uint64_t>(static_cast<uint64_t>(size.QuadPart), maximum);
    if (wanted > std::numeric_limits<size_t>::max() / 2) throw std::bad_alloc();
    FileContent read(static_cast<size_t>(wanted));
    size_t done = 0;
    while (done < wanted) {
        const DWORD step = static_cast<DWORD>(std::min(static_cast<size_t>(wanted) - done, kLargestTransfer));
        DWORD got = 0;
        if (!::ReadFile(file.get(), read.data() + done, step, &got, nullptr)) return ReadStatus::CannotRead;
        if (got == 0) break;
        done += got;
    }
    read.Shorten(done);
    content = std::move(read);
    return ReadStatus::Done;
}

bool WriteWholeFile(WideStringView path, std::span<const uint8_t> bytes) {
    std::wstring place = NativePath(path);
    if (place.empty()) return false;
    place = TargetOf(place);

    // Checked here, because not every system refuses to replace a read-only file.
    const DWORD old = ::GetFileAttributesW(place.c_str());
    if (old != INVALID_FILE_ATTRIBUTES && (old & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY))) return false;

    std::wstring temporary;
    Handle file(CreateBeside(place, temporary));
    if (!file) return false;
    const bool complete = WriteAll(file.get(), bytes) && ::FlushFileBuffers(file.get());
    if (!file.Close() || !complete ||
        !::MoveFileExW(temporary.c_str(), place.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        ::DeleteFileW(temporary.c_str());
        return false;
    }
    return true;
}

}  // namespace orlix
