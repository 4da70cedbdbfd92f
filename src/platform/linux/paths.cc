#include "platform/paths.h"

namespace twr {

const char16_t kPathSeparator = u'/';
const std::u16string_view kLibrarySuffix = u".so";
const std::string_view kLineEnd = "\n";

}  // namespace twr
