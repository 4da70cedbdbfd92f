// SPDX-License-Identifier: MIT
// The sentinel for no value. It is also a legal value to publish: it clears an entry.
#pragma once
#include <cstdint>

namespace twr {

inline constexpr double kNoValue = 32767.0;
inline constexpr std::int32_t kNoInt = 32767;

}  // namespace twr
