// Several images, one after another.
#pragma once

#include "document.hpp"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tool {

class Progress;
class Subcommand;

// Names for people and documents, all different: the last part of each path, with as many folders before it as tell it
// from the others, and a number where a file is named twice. Standard input is "stdin".
std::vector<std::string> ShownNames(const std::vector<std::string>& files);

// The folder of --out, made when it is not there, with a name for each image that no other image of the batch has.
class OutputFolder {
public:
    // What the folder will get: for the image named NAME the files NAME + suffix, and others once. UsageError, before
    // anything is measured, when one of these exists already and is an input, or no result of this program and `force`
    // is not given; OutputError when the folder cannot be made or written to.
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

// Calls `work` for each image and `print` with the document it gave. A failure becomes the document {file, error,
// warnings} and a message, and the batch goes on; only a library that cannot be used ends it. Results that could not be
// written (OutputError, which `work` leaves in the document by NoteOutputError) are a failure beside the measurement.
// Stopped by Ctrl-C it returns with the images measured until then and a warning.
struct Batch {
    Json images = Json::array();
    Json warnings = Json::array();  // about the batch as a whole
    bool failed = false, stopped = false;

    int code() const;
    // Runs `write`, of a file about the batch as a whole; an OutputError becomes a message and a warning, and the batch
    // has failed.
    void Write(const std::function<void()>& write);
};
Batch RunBatch(const std::vector<std::string>& files,
               const std::function<Json(size_t index, const std::string& name, Progress& progress)>& work,
               const std::function<void(const Json& document)>& print);

// Prints what a command for one image has to say: with --json the document of all commands, otherwise the warnings, as
// messages.
void PrintOne(const Subcommand& command, Json image, bool json);

// Runs `write`; an OutputError becomes the member "outputError" of the document.
void NoteOutputError(Json& document, const std::function<void()>& write);

}  // namespace tool
