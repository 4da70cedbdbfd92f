// SPDX-License-Identifier: MIT
// The variables that the stand-in offers, each under a number of its own, and the file that lists them.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "nmea/moment.h"

namespace twr {

struct Variable {
    std::int32_t number;
    const char* name;       // at most 15 characters, no blank
    const char* unit;       // at most 7 characters, no blank
    std::int16_t decimals;  // that a display shows
    std::int16_t isSigned;  // 1 when it has a port and a starboard side
    std::int16_t page;      // group of displays
    Quantity quantity;
};

// In ascending order of their numbers.
std::span<const Variable> Variables();

// nullopt if no variable has the number.
std::optional<Quantity> QuantityOf(std::int32_t number);

// The whole text of Data/J_vars06.d.
std::string VariableFileText();

}  // namespace twr
