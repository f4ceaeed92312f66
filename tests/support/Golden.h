// Exact texts (dumps, log lines) kept as files under tests/golden/ and
// compared character for character. Set TEVOGL_UPDATE_GOLDEN=1 to rewrite
// the files from what the tests produce when a change of text is meant;
// review the diff before committing it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Tev::Test {

// p_name is the file's path below tests/golden/, "device/format-dump.txt".
::testing::AssertionResult MatchesGolden(std::string const& p_name, std::string const& p_text);

// The texts joined one per line, each with its newline.
std::string Lines(std::vector<std::string> const& p_texts);

}  // namespace Tev::Test
