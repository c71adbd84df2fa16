// Several images, one after another.
#pragma once

#include "document.hpp"

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace tool {

class Progress;

// The last part of each path, with its folder where that alone names two images.
std::vector<std::string> ShownNames(const std::vector<std::string>& files);

// The folder of --out, made when it is not there, with a name for each image that no other image of the batch has.
class OutputFolder {
public:
    explicit OutputFolder(const std::string& folder);
    std::string NameFor(const std::string& file);  // the file's name without its extension, perhaps with a number
    std::filesystem::path At(const std::string& name) const;

private:
    std::filesystem::path folder_;
    std::set<std::string> used_;
};

// Calls `work` for each image and `print` with the document it gave. A failure becomes the document {file, error} and a message,
// and the batch goes on; only a library that cannot be used ends it.
struct Batch {
    Json images = Json::array();
    Json warnings = Json::array();  // about the batch as a whole
    bool failed = false;
};
Batch RunBatch(const std::vector<std::string>& files,
               const std::function<Json(size_t index, const std::string& name, Progress& progress)>& work,
               const std::function<void(const Json& document)>& print);

}  // namespace tool
