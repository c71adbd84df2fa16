// Arguments, files and the terminal. All text is UTF-8 on every platform, file names included.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum ExitCode {
    kDone = 0,
    kFailed = 1,        // a file could not be read, measured or written; the other files of the batch were
    kUsage = 2,         // the command line is wrong; nothing was done
    kNoModule = 3,      // the library's objects cannot be created
    kInterrupted = 130  // stopped by Ctrl-C or a similar signal; off Windows the process ends by that signal itself
};

// The command line is invalid.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The arguments without the program's name. On Windows the system gives them in UTF-16, and * and ? in the last part of
// a path are expanded here, because no shell has done it.
std::vector<std::string> Arguments(int argc, char** argv);

// Makes standard input and output pass bytes unchanged, and a Windows console interpret them as UTF-8.
void PrepareConsole();

std::filesystem::path Path(std::string_view utf8);
std::string Utf8(const std::filesystem::path& path);  // with / between the parts

// For people and documents. File names off Windows are bytes; those that are not UTF-8 become U+FFFD.
std::string ValidUtf8(std::string_view text);
std::string Extension(std::string_view file);  // in lower case: ".png" of "A.PNG"

// A result that could not be written.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The system's reason: "no such file", "permission denied" and the like; empty if it does not refuse.
std::string WhyNotRead(const std::filesystem::path& path);
std::string WhyNotWritten(const std::filesystem::path& path);
std::string WhyWritingFailed(const std::filesystem::path& path);  // recognises a full disk as well

// Their failures name the path and the reason. A file that cannot be written completely is removed.
std::string ReadFile(const std::filesystem::path& path);                      // throws std::runtime_error
void WriteFile(const std::filesystem::path& path, std::string_view content);  // throws OutputError

// Throws UsageError if the output is "-" and standard output is a terminal, which an image would garble.
void RefuseTerminal(const std::string& output);

// Shows "3 of 20 [=====>     ] name" on standard error during its lifetime, if that is a terminal and there are several
// images.
class Progress {
public:
    explicit Progress(size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Next(std::string_view name);
    void Clear();                     // call it before writing to a standard output that may be the same terminal
    void Say(std::string_view line);  // writes a line to standard error, with or without a terminal

private:
    size_t total_;
    size_t done_ = 0;
    bool shown_;
};

}  // namespace tool
