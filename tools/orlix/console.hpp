// The world outside: arguments, files, the terminal. Text is UTF-8 throughout, file names too, on every platform.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum ExitCode {
    kDone = 0,
    kFailed = 1,        // a file could not be read, measured or written; the others of the batch were
    kUsage = 2,         // the command line is wrong; nothing was done
    kNoModule = 3,      // the library's objects cannot be created
    kInterrupted = 130  // stopped by Ctrl-C or its like; where the system can say so, the process ends by that signal
};

// The command line asks for something that cannot be meant.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The arguments without the program's name. On Windows they come as UTF-16 from the system, and * and ? in the last
// part of a path stand for the files that match, as no shell has done it there.
std::vector<std::string> Arguments(int argc, char** argv);

// Makes standard input and output take bytes as they are, and a Windows console read them as UTF-8.
void PrepareConsole();

std::filesystem::path Path(std::string_view utf8);
std::string Utf8(const std::filesystem::path& path);  // with / between the parts

// Off Windows names are bytes. These are for people and documents: what is no UTF-8 becomes U+FFFD.
std::string ValidUtf8(std::string_view text);
std::string Extension(std::string_view file);  // ".png" of "A.PNG", in small letters

// A result that could not be written.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Why the system refuses: "no such file", "permission denied" and the like; empty when it does not.
std::string WhyNotRead(const std::filesystem::path& path);
std::string WhyNotWritten(const std::filesystem::path& path);
std::string WhyWritingFailed(const std::filesystem::path& path);  // the full disk, too

// Both name the path and the reason. A file that could not be written completely is removed.
std::string ReadFile(const std::filesystem::path& path);                      // throws std::runtime_error
void WriteFile(const std::filesystem::path& path, std::string_view content);  // throws OutputError

// UsageError when the output is "-" and standard output a terminal, which an image would upset.
void RefuseTerminal(const std::string& output);

// "3 of 20 [=====>     ] name" on standard error while it lasts; nothing unless that is a terminal and there are
//                      several.
class Progress {
public:
    explicit Progress(size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Next(std::string_view name);
    void Clear();                     // before something is written to a terminal that standard output shares
    void Say(std::string_view line);  // a line of its own on standard error, in any case

private:
    size_t total_;
    size_t done_ = 0;
    bool shown_;
};

}  // namespace tool
