#include "batch.hpp"

#include "console.hpp"
#include "image_file.hpp"
#include "interruption.hpp"
#include "subcommand.hpp"
#include "warnings.hpp"

#include <orlix/client.hpp>

#include <iostream>
#include <map>
#include <optional>
#include <set>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tool {

namespace {

// The last parts of the path, joined; the whole path if it has no more parts.
std::string LastParts(const std::filesystem::path& path, size_t count) {
    std::filesystem::path out = path.filename(), rest = path.parent_path();
    for (size_t i = 1; i < count && rest.has_relative_path(); ++i) {
        out = rest.filename() / out;
        rest = rest.parent_path();
    }
    return Utf8(count > 1 && !rest.has_relative_path() && rest.has_root_path() ? rest / out : out);
}

// Names that a file system may treat as one name have the same key.
std::string NameKey(const std::string& name) {
#ifdef _WIN32
    std::wstring wide = Path(name).wstring();
    CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
    return orlix::ToUtf8(wide);
#else
    return name;
#endif
}

}  // namespace

std::vector<std::string> ShownNames(const std::vector<std::string>& files) {
    std::vector<std::string> names(files.size());
    std::vector<size_t> parts(files.size(), 1);
    for (bool again = true; again;) {
        std::map<std::string, std::vector<size_t>> uses;
        for (size_t i = 0; i < files.size(); ++i) {
            names[i] = files[i] == "-" ? "stdin" : LastParts(Path(files[i]), parts[i]);
            uses[names[i]].push_back(i);
        }
        again = false;
        for (const auto& [name, indices] : uses)
            for (const size_t i : indices)
                if (indices.size() > 1 && LastParts(Path(files[i]), parts[i] + 1) != name) {
                    ++parts[i];
                    again = true;
                }
    }
    std::map<std::string, int> seen;
    for (std::string& name : names) {
        name = ValidUtf8(name);
        if (const int number = ++seen[name]; number > 1) name += " (" + std::to_string(number) + ")";
    }
    return names;
}

OutputFolder::OutputFolder(const std::string& folder, const std::vector<std::string>& inputs, const Plan& plan,
                           bool force)
    : folder_(Path(folder)) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    if (!std::filesystem::is_directory(folder_)) {
        const std::string reason = WhyNotWritten(folder_);
        throw OutputError("cannot make the folder " + folder + (reason.empty() ? "" : ": " + reason));
    }
    const std::string probe = "orlix-write-test.tmp";
    if (const std::string reason = WhyNotWritten(At(probe)); !reason.empty())
        throw OutputError("cannot write to the folder " + folder + ": " + reason);

    std::set<std::string> used;
    for (const std::string& file : inputs) {
        const std::string stem = file == "-" ? "stdin" : Utf8(Path(file).stem());
        std::string name = stem;
        for (int number = 2; !used.insert(NameKey(name)).second; ++number) name = stem + "_" + std::to_string(number);
        names_.push_back(name);
    }

    std::vector<std::string> results = plan.others;
    for (const std::string& name : names_)
        for (const std::string& suffix : plan.suffixes) results.push_back(name + suffix);
    for (const std::string& result : results) {
        const std::filesystem::path path = At(result);
        if (!std::filesystem::exists(path, error)) continue;
        for (const std::string& input : inputs)
            if (input != "-" && std::filesystem::equivalent(Path(input), path, error))
                throw UsageError("a result would replace the input " + input + "; choose another folder for --out");
        if (!force && !IsSigned(path))
            throw UsageError(
                Utf8(path) +
                " is there already and not a result of an earlier run; choose another folder for --out, or "
                "give --force to replace it");
    }
}

std::filesystem::path OutputFolder::At(const std::string& name) const { return folder_ / Path(name); }

int Batch::code() const { return stopped ? kInterrupted : failed ? kFailed : kDone; }

void Batch::Write(const std::function<void()>& write) {
    try {
        write();
    } catch (const OutputError& error) {
        std::cerr << "orlix: " << error.what() << std::endl;
        Json whole = {{"warnings", warnings}};
        Warn(whole, "not-written", error.what());
        warnings = whole["warnings"];
        failed = true;
    }
}

void PrintOne(const Subcommand& command, Json image, bool json) {
    if (!json) {
        for (const Json& warning : Warnings(image))
            std::cerr << "orlix: warning: " << warning["message"].get<std::string>() << std::endl;
        return;
    }
    if (!image.contains("warnings")) image["warnings"] = Json::array();
    Json document = command.Envelope();
    document["images"].push_back(std::move(image));
    document["warnings"] = Json::array();
    std::cout << Print(document);
}

Batch RunBatch(const std::vector<std::string>& files,
               const std::function<Json(size_t index, const std::string& name, Progress& progress)>& work,
               const std::function<void(const Json& document)>& print) {
    const std::vector<std::string> names = ShownNames(files);
    Batch batch;
    Progress progress(files.size());
    std::optional<Stoppable> stoppable;
    if (files.size() > 1) stoppable.emplace();
    for (size_t i = 0; i < files.size() && !batch.stopped; ++i) {
        progress.Next(names[i]);
        Json document;
        try {
            document = work(i, names[i], progress);
            if (document.contains("outputError")) {
                progress.Say("orlix: " + names[i] + ": " + document["outputError"].get<std::string>());
                batch.failed = true;
            }
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
        batch.stopped = stoppable && Stoppable::Stopped();
    }
    if (batch.images.size() < files.size()) {
        Json whole;
        Warn(
            whole, "stopped",
            "stopped after " + std::to_string(batch.images.size()) + " of " + std::to_string(files.size()) + " images");
        batch.warnings = whole["warnings"];
        progress.Say("orlix: " + whole["warnings"][0]["message"].get<std::string>());
    }
    return batch;
}

void NoteOutputError(Json& document, const std::function<void()>& write) {
    try {
        write();
    } catch (const OutputError& error) {
        document["outputError"] = error.what();
    }
}

}  // namespace tool
