// Programs of others, as independent readers and writers of files. Natively only.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "files/hand_made.hpp"

namespace orlix::test {

inline bool IsInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

// A file in the folder for temporary ones, until the end of the block.
class InputFile {
public:
    explicit InputFile(const Bytes& content, const std::string& extension = {})
        : path_(std::filesystem::temp_directory_path() /
                ("orlix_other_programs_" + std::to_string(getpid()) + extension)) {
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()), std::ssize(content));
    }
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    std::string path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

// ImageMagick's program, which has a common name: the one beside `identify`, in a command of the shell.
inline const std::string kConvert = "\"$(dirname \"$(command -v identify)\")\"/convert ";

// What a command of the shell writes when these bytes are its standard input; nullopt if it fails.
inline std::optional<Bytes> OutputOf(const std::string& command, const Bytes& input) {
    const InputFile file(input);
    FILE* const pipe = popen(("(" + command + ") <'" + file.path() + "' 2>/dev/null").c_str(), "r");
    if (!pipe) return std::nullopt;
    Bytes output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output.push_back(static_cast<uint8_t>(c));
    return pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}

}  // namespace orlix::test
