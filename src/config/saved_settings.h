// The settings of the suite in the registry, from which a new record is filled.
#pragma once
#include <cstddef>
#include <string_view>

namespace twr {

inline constexpr std::u16string_view kSavedSettingsKey = u"Software\\Tidewright\\core";

// Of sysValue, sysFlag and sysInt, each from its start, as "Sys_v0", "Sys_b0" and "Sys_i0".
inline constexpr std::size_t kSavedValues = 16;
inline constexpr std::size_t kSavedFlags = 34;
inline constexpr std::size_t kSavedInts = 11;

}  // namespace twr
