// Images in files. Where the library only reports that a file cannot be read or written, these functions add the path
// and the reason. The name "-" is standard input or output. File names that are not UTF-8, which the library's strings
// cannot hold, work as well.
#pragma once

#include "document.hpp"

#include <orlix/com_ptr.hpp>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

class Subcommand;

// The name of a new file in the system's folder for temporary files. The destructor removes the file.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view extension = {});
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Calls `read` with a path that the library accepts. If the system knows the reason of a failure, "(PATH: reason)" is
// appended to its text.
void ReadThrough(const std::string& file, const std::function<void(const std::string& path)>& read);

// The same for a file to be written. Throws OutputError "cannot write PATH: reason" if `write` fails.
void WriteThrough(const std::string& file, const std::function<void(const std::string& path)>& write);

std::string ReadInput(const std::string& file);  // the bytes of a file or of standard input

// What help texts say of the image files that a command reads, and of the names of those that it writes.
extern const std::string kImageFile, kImageFiles;  // "PNG, BMP, ... file; - is standard input"
extern const std::string kOutputNames;             // ".png .bmp ..."

// Whether the library writes a file of that name as an image, as PNG or otherwise.
bool IsImageName(std::string_view file);

// The options with which a command loads its images.
struct LoadOptions {
    std::optional<LONG> maxSamples;  // 0 for no limit; the library's own limit if not given
    LONG page = 0;
    std::string raw = {};  // see RawLayout; empty for files of the formats that the library knows

    void Add(Subcommand& command);       // --max-samples
    void AddPages(Subcommand& command);  // this, --page and --raw
    orlix::ComPtr<IImageVPAExPlus> NewImage() const;
    // If `pages` is not null, it receives the number of images in the file.
    orlix::ComPtr<IImageVPAExPlus> Load(const std::string& file, int64_t* pages = nullptr) const;

private:
    void LoadRaw(const std::string& file, const orlix::ComPtr<IImageVPAExPlus>& image, int64_t* pages) const;
};

// IFF_ByExtension means PNG on standard output. Throws like WriteThrough.
void SaveImage(const orlix::ComPtr<IImageVPAExPlus>& image, const std::string& file, ImageFileFormat format);

// Warns of properties of the image that a file of that name cannot hold: pixel size, coordinate map and texts.
void WarnOfLosses(const orlix::ComPtr<IImageVPAExPlus>& image, const std::string& file, Json& document);

// Marks and recognises results of this program, by the text "Software" of PNG files and the generator of pages, so that
// a later run replaces them and no other files.
void Sign(const orlix::ComPtr<IImageVPAExPlus>& image);
bool IsSigned(const std::filesystem::path& path);

// Throws UsageError if the output that the user named is one of the inputs or the terminal.
void CheckOutput(const std::string& output, const std::vector<std::string>& inputs, bool force);

}  // namespace tool
