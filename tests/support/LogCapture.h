// Test helpers over the capturing log sink.
#pragma once

#include "framework/debug/Debug.h"

#include <string>
#include <vector>

namespace Tev::Test {

// The texts of the failed checks logged while the scope was installed, each
// in the logger's form "\"condition\" - signature".
std::vector<std::string> Assertions(Debug::CaptureScope const& p_capture);

// True when a failed check with exactly this condition text was logged,
// whatever the function signature after it.
bool HasAssertion(Debug::CaptureScope const& p_capture, std::string const& p_condition);

// Everything the scope holds, for golden files: one entry a line,
// "channel [category]: text", with the text as written.
std::string LogText(Debug::CaptureScope const& p_capture);

}  // namespace Tev::Test
