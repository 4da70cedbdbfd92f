#include "platform/paths.h"

namespace twr {

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    path += kPathSeparator;
    path += name;
    return path;
}

}  // namespace twr
