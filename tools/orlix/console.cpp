#include "console.hpp"

#include <fstream>
#include <iostream>
#include <iterator>

#ifdef _WIN32
#include <orlix/client.hpp>

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
    _setmode(_fileno(stdout), _O_BINARY);
}

#else

namespace {

bool StderrIsTerminal() { return isatty(STDERR_FILENO) != 0; }

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

void PrepareConsole() {}

#endif

std::filesystem::path Path(std::string_view utf8) {
#ifdef _WIN32
    return std::filesystem::path(orlix::ToUtf16(utf8));
#else
    return std::filesystem::path(utf8);  // the system's names are bytes: kept, whatever they mean
#endif
}

std::string Utf8(const std::filesystem::path& path) {
#ifdef _WIN32
    return orlix::ToUtf8(path.generic_wstring());
#else
    return path.generic_string();
#endif
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw std::runtime_error("cannot read " + Utf8(path));
    return content;
}

void WriteFile(const std::filesystem::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + Utf8(path));
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
