// Images in files. The library says that a file cannot be read or written; here are the path and the reason, too. The
// name "-" is standard input or standard output, and names whose bytes are no UTF-8, which the library's strings do not
// hold, work as well.
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

// The name of a file that does not exist yet, in the system's folder for such files. What is there in the end is
// removed.
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

// Lets `read` open the file under a name that the library takes. An error that the system knows the reason of ends with
// "(PATH: reason)".
void ReadThrough(const std::string& file, const std::function<void(const std::string& path)>& read);

// The same for a file to be written; OutputError "cannot write PATH: reason" when `write` fails.
void WriteThrough(const std::string& file, const std::function<void(const std::string& path)>& write);

std::string ReadInput(const std::string& file);  // the bytes of a file or of standard input

// What help texts say of the image files that a command reads.
constexpr char kImageFile[] = "PNG, BMP, PGM or PPM file; - is standard input";
constexpr char kImageFiles[] = "PNG, BMP, PGM or PPM files; - is standard input";

// Whether the library writes a file of that name as an image: .png, .pgm or .ppm.
bool IsImageName(std::string_view file);

// How the images of a command are loaded.
struct LoadOptions {
    std::optional<LONG> maxSamples;  // 0: no limit; otherwise the library's own

    void Add(Subcommand& command);
    orlix::ComPtr<IImageVPAExPlus> NewImage() const;
    orlix::ComPtr<IImageVPAExPlus> Load(const std::string& file) const;
};

// IFF_ByExtension is PNG on standard output. Throws as WriteThrough does.
void SaveImage(const orlix::ComPtr<IImageVPAExPlus>& image, const std::string& file, ImageFileFormat format);

// Warns of what a file of that name does not hold: pixel size and texts in PGM and PPM.
void WarnOfLosses(const orlix::ComPtr<IImageVPAExPlus>& image, const std::string& file, Json& document);

// Results of this program say so in themselves (the text "Software" of PNG files, the generator of pages), so that a
// second run may replace them and nothing else.
void Sign(const orlix::ComPtr<IImageVPAExPlus>& image);
bool IsSigned(const std::filesystem::path& path);

// UsageError when the output, which the user named, is one of the inputs or the terminal.
void CheckOutput(const std::string& output, const std::vector<std::string>& inputs, bool force);

}  // namespace tool
