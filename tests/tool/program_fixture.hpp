// Runs the program as its user does: arguments in, standard output, standard error, files and exit code out.
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
#include <sstream>

namespace tool {

struct Result {
    int code = 0;
    std::string out, err;
};

class Captured {
public:
    explicit Captured(std::ostream& stream) : stream_(stream), old_(stream.rdbuf(buffer_.rdbuf())) {}
    ~Captured() { stream_.rdbuf(old_); }
    std::string text() const { return buffer_.str(); }

private:
    std::ostringstream buffer_;
    std::ostream& stream_;
    std::streambuf* old_;
};

inline Result Orlix(const std::vector<std::string>& arguments) {
    const Captured out(std::cout), err(std::cerr);
    const int code = Run(arguments);
    return {code, out.text(), err.text()};
}

// The document that a command gives with --json.
inline Json DocumentOf(const std::string& command, const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {command, "--json"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Result result = Orlix(all);
    EXPECT_EQ(kDone, result.code) << result.err;
    return result.code == kDone ? Json::parse(result.out) : Json();
}
inline Json Measured(const std::vector<std::string>& arguments) { return DocumentOf("measure", arguments); }

class Program : public testing::Test {
protected:
    void SetUp() override {
        // A folder whose name no 8-bit code page holds.
        folder_ =
            std::filesystem::temp_directory_path() /
            Path("orlix prüfung 試料 " + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string At(const std::string& name) const { return Utf8(folder_ / Path(name)); }
    bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / Path(name)); }

    // The file of a specimen, and the specimen itself.
    samples::Specimen Make(const std::string& name, samples::SpecimenSettings settings = {}) const {
        constexpr const char* kBackgrounds[] = {"flat", "tilted", "domed"};
        const auto text = [](auto value) { return Number(static_cast<double>(value)); };
        const Result result = Orlix({"specimen",     At(name),
                                     "--seed",       text(settings.seed),
                                     "--bits",       text(settings.bits),
                                     "--pits",       text(settings.pits),
                                     "--particles",  text(settings.particles),
                                     "--scratches",  text(settings.scratches),
                                     "--noise",      text(settings.noise),
                                     "--span",       text(settings.backgroundSpan),
                                     "--contrast",   text(settings.particleContrast),
                                     "--background", kBackgrounds[static_cast<size_t>(settings.background)],
                                     "--pixel-size", "0.5"});
        EXPECT_EQ(kDone, result.code) << result.err;
        return samples::MakeSpecimen(settings);
    }

    orlix::Apartment apartment_;
    std::filesystem::path folder_;
};

}  // namespace tool
