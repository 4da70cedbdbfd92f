// Wide text as Windows takes and gives it.
#pragma once
#include <string>
#include <string_view>

namespace twr {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::wstring ToWide(std::u16string_view text) { return {text.begin(), text.end()}; }
inline std::u16string FromWide(std::wstring_view text) { return {text.begin(), text.end()}; }

}  // namespace twr
