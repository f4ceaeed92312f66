#include "framework/file/File.h"

#include <system_error>

namespace Tev::File {

bool fileexists(filepath const& p_path) {
    std::error_code error;
    return std::filesystem::is_regular_file(p_path, error);
}

}  // namespace Tev::File
