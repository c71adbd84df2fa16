#include "console.hpp"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>

#include <orlix/client.hpp>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#else
#include <unistd.h>
#endif

namespace tool {

#ifdef _WIN32

namespace {

bool StderrIsTerminal() { return _isatty(_fileno(stderr)) != 0; }
bool StdoutIsTerminal() { return _isatty(_fileno(stdout)) != 0; }

void AddMatches(const std::wstring& argument, std::vector<std::string>& out) {
    const size_t name = argument.find_last_of(L"/\\") + 1;  // npos + 1 = 0
    WIN32_FIND_DATAW found = {};
    const bool pattern = argument.find_first_of(L"*?", name) != std::wstring::npos && argument[0] != L'-';
    const HANDLE search = pattern ? FindFirstFileW(argument.c_str(), &found) : INVALID_HANDLE_VALUE;
    if (search == INVALID_HANDLE_VALUE) {
        out.push_back(orlix::ToUtf8(argument));
        return;
    }
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            out.push_back(orlix::ToUtf8(argument.substr(0, name) + found.cFileName));
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

}  // namespace

std::vector<std::string> Arguments(int, char**) {
    std::vector<std::string> out;
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; arguments && i < count; ++i) AddMatches(arguments[i], out);
    LocalFree(arguments);
    return out;
}

void PrepareConsole() {
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

#else

namespace {

bool StderrIsTerminal() { return isatty(STDERR_FILENO) != 0; }
bool StdoutIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

void PrepareConsole() {}

#endif

std::filesystem::path Path(std::string_view utf8) {
#ifdef _WIN32
    return std::filesystem::path(orlix::ToUtf16(utf8));
#else
    return std::filesystem::path(utf8);  // file names are bytes here and need not be UTF-8
#endif
}

std::string Utf8(const std::filesystem::path& path) {
#ifdef _WIN32
    return orlix::ToUtf8(path.generic_wstring());
#else
    return path.generic_string();
#endif
}

std::string ValidUtf8(std::string_view text) { return orlix::ToUtf8(orlix::ToUtf16(text)); }

std::string Extension(std::string_view file) {
    std::string extension = Utf8(Path(file).extension());
    for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return extension;
}

namespace {

std::string Reason(const std::error_code& error) {
    const std::error_condition reason = error.default_error_condition();
    if (reason == std::errc::permission_denied || reason == std::errc::operation_not_permitted)
        return "permission denied";
    if (reason == std::errc::read_only_file_system) return "the file system is read-only";
    if (reason == std::errc::no_space_on_device) return "the disk is full";
    if (reason == std::errc::filename_too_long) return "the name is too long";
    return error ? error.message() : std::string();
}

}  // namespace

std::string WhyNotRead(const std::filesystem::path& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "no such file";
    if (!std::filesystem::status_known(status)) return Reason(error);
    if (std::filesystem::is_directory(status)) return "a folder, not a file";
    if (!std::filesystem::is_regular_file(status)) return "not a regular file";
    errno = 0;
    if (!std::ifstream(path, std::ios::binary)) return Reason({errno, std::generic_category()});
    return std::filesystem::file_size(path, error) == 0 && !error ? "the file is empty" : "";
}

std::string WhyNotWritten(const std::filesystem::path& path) {
    std::error_code error;
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    const std::filesystem::file_status parent = std::filesystem::status(folder, error);
    if (parent.type() == std::filesystem::file_type::not_found) return "no such folder";
    if (!std::filesystem::status_known(parent)) return Reason(error);
    if (!std::filesystem::is_directory(parent)) return Utf8(folder) + " is not a folder";
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status)) return "a folder has that name";
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) return "not a regular file";
    // Only an attempt shows what access lists, quotas and read-only systems allow. It keeps the old content.
    const bool existed = std::filesystem::exists(status);
    errno = 0;
    if (!std::ofstream(path, std::ios::binary | std::ios::app)) return Reason({errno, std::generic_category()});
    if (!existed) {
        std::filesystem::remove(path, error);
    } else {
        // The library writes a new file next to the old one, then replaces that.
        std::filesystem::path beside = path;
        beside += ".orlix.tmp";
        errno = 0;
        if (!std::ofstream(beside, std::ios::binary)) return "its folder: " + Reason({errno, std::generic_category()});
        std::filesystem::remove(beside, error);
    }
    return {};
}

std::string WhyWritingFailed(const std::filesystem::path& path) {
    if (const std::string reason = WhyNotWritten(path); !reason.empty()) return reason;
    constexpr uintmax_t kLittle = uintmax_t{16} << 20;
    std::error_code error;
    const std::filesystem::space_info space =
        std::filesystem::space(path.has_parent_path() ? path.parent_path() : ".", error);
    if (error || space.available >= kLittle) return {};
    return "the disk is full, " + std::to_string(space.available / 1024) + " kB are left";
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const bool opened = file.is_open();
    std::string content;
    for (size_t size = 0; opened && file; content.resize(size)) {
        content.resize(2 * size + 0x10000);
        file.read(content.data() + size, static_cast<std::streamsize>(content.size() - size));
        size += static_cast<size_t>(file.gcount());
    }
    if (!opened || file.bad()) {
        const std::string reason = WhyNotRead(path);
        throw std::runtime_error("cannot read " + Utf8(path) + (reason.empty() ? "" : ": " + reason));
    }
    return content;
}

void WriteFile(const std::filesystem::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    const bool opened = file.is_open();
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (file) return;
    std::error_code ignored;
    if (opened) std::filesystem::remove(path, ignored);
    const std::string reason = WhyWritingFailed(path);
    throw OutputError("cannot write " + Utf8(path) + (reason.empty() ? "" : ": " + reason));
}

void RefuseTerminal(const std::string& output) {
    if (output == "-" && StdoutIsTerminal())
        throw UsageError("the image would go to the terminal; send standard output to a file or a program");
}

Progress::Progress(size_t total) : total_(total), shown_(total >= 3 && StderrIsTerminal()) {}

Progress::~Progress() { Clear(); }

void Progress::Next(std::string_view name) {
    if (shown_) {
        constexpr size_t kWidth = 30;
        const size_t filled = kWidth * done_ / total_;
        Clear();
        std::cerr << done_ + 1 << " of " << total_ << " [" << std::string(filled, '=')
                  << std::string(kWidth - filled, ' ') << "] " << name << std::flush;
    }
    ++done_;
}

void Progress::Say(std::string_view line) {
    Clear();
    std::cerr << line << std::endl;
}

void Progress::Clear() {
    if (shown_) std::cerr << "\r\033[K";
}

}  // namespace tool
