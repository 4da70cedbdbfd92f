// The 20 calibrations that the suite knows: what each corrects, over which inputs, and on which grid a new table starts.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace twr {

inline constexpr std::size_t kCalibrationCount = 20;

struct CalibrationInfo {
    std::uint16_t corrected, inputX, inputY;  // ChannelIds; 32767 for none
    std::uint8_t pointsX, pointsY;            // points on the first and second axis
    float value;                              // in `unit`
    float startX, startY, stepX, stepY;       // in the units of the inputs
    std::uint8_t flags[2];
    std::uint8_t always;  // in force whether or not it is switched on
    std::uint8_t flag3;
    std::u16string_view unit;
    std::u16string_view name;
    std::int32_t next;  // the row after it, 0 after the last
};

// Indexed like the calibrations themselves.
std::span<const CalibrationInfo, kCalibrationCount> CalibrationCatalogue();

}  // namespace twr
