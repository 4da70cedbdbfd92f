#include "platform/paths.h"

namespace twr {

const char16_t kPathSeparator = u'\\';
const std::u16string_view kLibrarySuffix = u".dll";
const std::string_view kLineEnd = "\r\n";

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    path += kPathSeparator;
    path += name;
    return path;
}

}  // namespace twr
