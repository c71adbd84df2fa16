#include "batch.hpp"

#include "console.hpp"

#include <orlix/client.hpp>

#include <map>

namespace tool {

std::vector<std::string> ShownNames(const std::vector<std::string>& files) {
    std::map<std::string, int> uses;
    for (const std::string& file : files) ++uses[Utf8(Path(file).filename())];
    std::vector<std::string> names;
    for (const std::string& file : files) {
        const std::filesystem::path path = Path(file);
        const std::string name = Utf8(path.filename());
        const std::string folder = Utf8(path.parent_path().filename());
        names.push_back(uses[name] == 1 || folder.empty() ? name : folder + "/" + name);
    }
    return names;
}

OutputFolder::OutputFolder(const std::string& folder) : folder_(Path(folder)) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    if (!std::filesystem::is_directory(folder_)) throw std::runtime_error("cannot make the folder " + folder);
}

std::string OutputFolder::NameFor(const std::string& file) {
    const std::string stem = Utf8(Path(file).stem());
    std::string name = stem;
    for (int number = 2; !used_.insert(name).second; ++number) name = stem + "_" + std::to_string(number);
    return name;
}

std::filesystem::path OutputFolder::At(const std::string& name) const { return folder_ / Path(name); }

Batch RunBatch(const std::vector<std::string>& files,
               const std::function<Json(size_t index, const std::string& name, Progress& progress)>& work,
               const std::function<void(const Json& document)>& print) {
    const std::vector<std::string> names = ShownNames(files);
    Batch batch;
    Progress progress(files.size());
    for (size_t i = 0; i < files.size(); ++i) {
        progress.Next(names[i]);
        Json document;
        try {
            document = work(i, names[i], progress);
        } catch (const std::exception& error) {
            const auto* const call = dynamic_cast<const orlix::Error*>(&error);
            if (call && (call->result() == REGDB_E_CLASSNOTREG || call->result() == CO_E_CLASSSTRING)) throw;
            progress.Say("orlix: " + names[i] + ": " + error.what());
            batch.failed = true;
            document = {{"file", names[i]}, {"error", error.what()}};
        }
        if (!document.contains("warnings")) document["warnings"] = Json::array();
        progress.Clear();
        print(document);
        batch.images.push_back(std::move(document));
    }
    return batch;
}

}  // namespace tool
