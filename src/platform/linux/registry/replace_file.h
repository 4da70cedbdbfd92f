// Writing a file whole, so that it is at every moment either the old one or the new one.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// Makes missing folders, writes a temporary beside the file, flushes it to the disk and moves it into place. A file that is not to
// be written stays as it is; a link stays a link. False when it can't, and errno says why; the old file is there then.
bool ReplaceFile(const std::string& path, std::string_view bytes);

}  // namespace twr
