#include "support/Golden.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Tev::Test {

::testing::AssertionResult MatchesGolden(std::string const& p_name, std::string const& p_text) {
    auto const path = std::filesystem::path(TEVOGL_GOLDEN_DIR) / p_name;
    if (char const* update = std::getenv("TEVOGL_UPDATE_GOLDEN"); update && *update && *update != '0') {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << p_text;
        return ::testing::AssertionSuccess() << "rewrote " << p_name;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) return ::testing::AssertionFailure() << "no golden file " << p_name << " (TEVOGL_UPDATE_GOLDEN=1 writes it)";
    std::string const expected(std::istreambuf_iterator<char>(in), {});
    if (expected == p_text) return ::testing::AssertionSuccess();
    // Where the texts part, with a few lines of each from the start of that
    // line: enough to see a changed field without printing a whole dump.
    std::size_t const at = std::mismatch(expected.begin(), expected.end(), p_text.begin(), p_text.end()).first - expected.begin();
    std::size_t const from = at ? expected.rfind('\n', at - 1) + 1 : 0;
    return ::testing::AssertionFailure() << p_name << ": first difference at line " << std::count(expected.begin(), expected.begin() + from, '\n') + 1
                                         << "\n  golden: [" << expected.substr(from, 240) << "]\n  actual: [" << p_text.substr(from, 240) << "]";
}

std::string Lines(std::vector<std::string> const& p_texts) {
    std::string out;
    for (auto const& text : p_texts) out += text + "\n";
    return out;
}

}  // namespace Tev::Test
