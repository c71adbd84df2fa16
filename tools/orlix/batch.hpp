// Commands that process several images, one after the other.
#pragma once

#include "document.hpp"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tool {

class Progress;
class Subcommand;

// Names for people and documents, all different: the last part of each path, with as many folders as it takes to tell
// it from the others, and a number if a file is named twice. Standard input is "stdin".
std::vector<std::string> ShownNames(const std::vector<std::string>& files);

// The folder of --out, created if it does not exist. Gives each image a name of its own.
class OutputFolder {
public:
    // The files to be written: NAME + suffix for each image, and others once. Throws UsageError, before anything is
    // measured, if one of them exists and is an input, or is no result of this program and `force` is false. Throws
    // OutputError if the folder cannot be created or written to.
    struct Plan {
        std::vector<std::string> suffixes, others;
    };
    OutputFolder(const std::string& folder, const std::vector<std::string>& inputs, const Plan& plan, bool force);

    const std::string& NameOf(size_t input) const { return names_[input]; }  // without extension, perhaps with a number
    std::filesystem::path At(const std::string& name) const;

private:
    std::filesystem::path folder_;
    std::vector<std::string> names_;
};

// Calls `work` for each image, and `print` with the document that it returns. A failure becomes the document {file,
// error, warnings} and a message, and the batch continues; only an unusable library ends it. If results cannot be
// written, `work` keeps the measurement and notes the OutputError with NoteOutputError; the batch has then failed too.
// After Ctrl-C the batch returns the images measured so far, with a warning.
struct Batch {
    Json images = Json::array();
    Json warnings = Json::array();  // about the batch as a whole
    bool failed = false, stopped = false;

    int code() const;
    // Runs `write`, which writes a file about the whole batch. An OutputError becomes a message and a warning, and the
    // batch has failed.
    void Write(const std::function<void()>& write);
};
Batch RunBatch(const std::vector<std::string>& files,
               const std::function<Json(size_t index, const std::string& name, Progress& progress)>& work,
               const std::function<void(const Json& document)>& print);

// Prints the result of a command for one image: the common document with --json, otherwise the warnings as messages.
void PrintOne(const Subcommand& command, Json image, bool json);

// Runs `write`; an OutputError becomes the member "outputError" of the document.
void NoteOutputError(Json& document, const std::function<void()>& write);

}  // namespace tool
