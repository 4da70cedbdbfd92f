// Replacing a file as a whole, so that it is at every moment either the old one or the new one.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// Makes missing folders, writes a temporary beside the file, flushes it to the disk and moves it into place. A file without write
// permission is not replaced; a link stays a link. On failure returns false, sets errno, and leaves the old file.
bool ReplaceFile(const std::string& path, std::string_view bytes);

}  // namespace twr
