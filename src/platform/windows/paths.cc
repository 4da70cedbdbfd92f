#include "platform/paths.h"

namespace twr {

const char16_t kPathSeparator = u'\\';
const std::u16string_view kLibrarySuffix = u".dll";
const std::string_view kLineEnd = "\r\n";

}  // namespace twr
