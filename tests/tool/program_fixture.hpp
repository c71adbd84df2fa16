// Runs the program as its user does: arguments and standard input in; standard output, standard error, files and exit
// code out.
#pragma once

#include "console.hpp"
#include "document.hpp"
#include "program.hpp"
#include "specimen.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orlix/client.hpp>

#include <filesystem>
#include <iostream>
#include <iterator>
#include <sstream>

namespace tool {

using testing::HasSubstr;
using testing::Not;

// Of a command line: a list, or a text with blanks between them.
struct Words : std::vector<std::string> {
    using vector::vector;
    Words(std::initializer_list<std::string> words) : vector(words) {}
    Words(const char* line) {
        std::istringstream words(line);
        assign(std::istream_iterator<std::string>(words), {});
    }
    friend Words operator+(Words left, const Words& right) {
        left.insert(left.end(), right.begin(), right.end());
        return left;
    }
};

// A standard stream that is a text while this object lives.
class Redirected {
public:
    explicit Redirected(std::ios& stream, const std::string& content = "")
        : buffer_(content), stream_(stream), old_(stream.rdbuf(&buffer_)) {}
    ~Redirected() { stream_.rdbuf(old_); }
    std::string text() const { return buffer_.str(); }

private:
    std::stringbuf buffer_;
    std::ios& stream_;
    std::streambuf* old_;
};

struct Result {
    int code = 0;
    std::string out, err;
};

inline Result Orlix(const Words& words, const std::string& input = "") {
    const Redirected in(std::cin, input), out(std::cout), err(std::cerr);
    const int code = Run(words);
    return {code, out.text(), err.text()};
}

// The document that a command gives with --json; what it says of its first image.
inline Json DocumentOf(const Words& words, const std::string& input = "") {
    const Result result = Orlix(words + Words{"--json"}, input);
    EXPECT_EQ(kDone, result.code) << result.err;
    return result.code == kDone ? Json::parse(result.out) : Json();
}
inline Json ImageOf(const Words& words, const std::string& input = "") {
    const Json document = DocumentOf(words, input);
    return document.is_null() ? document : document["images"][0];
}
inline Json Measured(const Words& words) { return ImageOf(Words{"measure"} + words); }

// The current folder is a new one, whose name no 8-bit code page holds.
class Program : public testing::Test {
protected:
    void SetUp() override {
        folder_ =
            std::filesystem::temp_directory_path() /
            Path("orlix prüfung 試料 " + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        before_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_);
    }
    void TearDown() override {
        std::filesystem::current_path(before_);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string At(const std::string& name) const { return Utf8(folder_ / Path(name)); }
    static bool Exists(const std::string& name) { return std::filesystem::exists(Path(name)); }

    // The file of a specimen, and the specimen itself.
    static samples::Specimen Make(const std::string& name, samples::SpecimenSettings settings = {}) {
        constexpr const char* kBackgrounds[] = {"flat", "tilted", "domed"};
        Words words = {"specimen", name, "--pixel-size", "0.5", "--background"};
        words.emplace_back(kBackgrounds[static_cast<size_t>(settings.background)]);
        for (const auto& [option, value] : {std::pair{"--seed", static_cast<double>(settings.seed)},
                                            {"--bits", settings.bits},
                                            {"--pits", settings.pits},
                                            {"--particles", settings.particles},
                                            {"--scratches", settings.scratches},
                                            {"--noise", settings.noise},
                                            {"--span", settings.backgroundSpan},
                                            {"--contrast", settings.particleContrast}})
            words = words + Words{option, Number(value)};
        const Result result = Orlix(words);
        EXPECT_EQ(kDone, result.code) << result.err;
        return samples::MakeSpecimen(settings);
    }
    // A PGM file. The levels go row by row, or are those of a function of x and y.
    static void WritePgm(const std::string& name, int width, int largest, const std::vector<int>& levels) {
        std::ostringstream pgm;
        pgm << "P2 " << width << ' ' << levels.size() / static_cast<size_t>(width) << ' ' << largest;
        for (const int level : levels) pgm << ' ' << level;
        WriteFile(Path(name), pgm.str());
    }
    template <class LevelAt>
    static void WritePgm(const std::string& name, int width, int height, int largest, const LevelAt& levelAt) {
        std::vector<int> levels;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) levels.push_back(static_cast<int>(levelAt(x, y)));
        WritePgm(name, width, largest, levels);
    }
    // A band of an 8-bit image file, row by row.
    static std::vector<int> Pixels(const std::string& name, LONG band = 0) {
        const auto image = orlix::CreateObject<IImageVPAExPlus>("Orlix.Image");
        orlix::Check(image->CreateFromFile(orlix::Text(name)), image);
        std::vector<int> pixels;
        for (const std::span<uint8_t> row : orlix::Rows<uint8_t>(image, band))
            pixels.insert(pixels.end(), row.begin(), row.end());
        return pixels;
    }

    orlix::Apartment apartment_;
    std::filesystem::path folder_, before_;
};

}  // namespace tool
