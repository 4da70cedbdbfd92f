// SPDX-License-Identifier: MIT
// The first content of a newly created record.
#pragma once
#include <array>
#include <cstdint>
#include <string>

#include "core/core_record.h"

namespace twr {

inline constexpr std::uint32_t kDefaultBoatColour = 0x90EE90;  // red 144, green 238, blue 144

inline constexpr std::uint8_t kFilledMark = 8;  // in `filledMark`, which no other program writes

// Writes every field that has an initial value, into a record of zeros. Gaps stay as they are.
void InitialiseRecord(CoreRecord& record);

// Turns the text in record.suiteText into its final form: the last 4 bytes go to the front, the whole is reversed, and each byte
// loses half its position.
void BuildSuiteText(CoreRecord& record);

}  // namespace twr
