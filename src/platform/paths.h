// How this system writes paths, names libraries and ends lines.
#pragma once
#include <string>
#include <string_view>

namespace twr {

extern const char16_t kPathSeparator;
extern const std::u16string_view kLibrarySuffix;  // of a loadable library's file name, dot included
extern const std::string_view kLineEnd;           // of the lines of a text file for users

// `folder`, the separator and `name`.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);

}  // namespace twr
