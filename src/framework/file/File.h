// File-system helpers.
#pragma once

#include <filesystem>

namespace Tev::File {

using filepath = std::filesystem::path;

// True when p_path names an existing regular file (symbolic links followed).
// Never throws: an unreadable path counts as absent.
bool fileexists(filepath const& p_path);

}  // namespace Tev::File
