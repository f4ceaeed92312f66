#include "support/Golden.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Tev::Test {

namespace {

std::filesystem::path GoldenPath(std::string const& p_name) {
    return std::filesystem::path(TEVOGL_GOLDEN_DIR) / p_name;
}

std::vector<std::string> SplitLines(std::string const& p_text) {
    std::vector<std::string> lines;
    std::istringstream in(p_text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Where the two texts part, with a few lines of each from there on: enough to
// see a changed field without printing a whole dump.
std::string FirstDifference(std::string const& p_expected, std::string const& p_actual) {
    auto const expected = SplitLines(p_expected), actual = SplitLines(p_actual);
    std::size_t line = 0;
    while (line < expected.size() && line < actual.size() && expected[line] == actual[line]) ++line;
    std::ostringstream out;
    out << "first difference at line " << line + 1;
    auto show = [&](char const* p_label, std::vector<std::string> const& p_lines) {
        out << "\n  " << p_label << ":";
        for (std::size_t i = line; i < p_lines.size() && i < line + 3; ++i) out << "\n    [" << p_lines[i] << "]";
        if (line >= p_lines.size()) out << " (ends)";
    };
    show("golden", expected);
    show("actual", actual);
    if (expected.size() == actual.size() && line == expected.size())
        out << "\n  (the texts differ only in their final newline)";
    return out.str();
}

}  // namespace

::testing::AssertionResult MatchesGolden(std::string const& p_name, std::string const& p_text) {
    auto const path = GoldenPath(p_name);
    if (char const* update = std::getenv("TEVOGL_UPDATE_GOLDEN"); update && *update && *update != '0') {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << p_text;
        return ::testing::AssertionSuccess() << "rewrote " << p_name;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) return ::testing::AssertionFailure() << "no golden file " << p_name << " (TEVOGL_UPDATE_GOLDEN=1 writes it)";
    std::string const expected((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (expected == p_text) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << p_name << ": " << FirstDifference(expected, p_text);
}

std::string Lines(std::vector<std::string> const& p_texts) {
    std::string out;
    for (auto const& text : p_texts) out += text + "\n";
    return out;
}

}  // namespace Tev::Test
