// SPDX-License-Identifier: MIT
#include "stand_in/variables.h"

#include <algorithm>

#include "base/numbers.h"

namespace twr {
namespace {

using enum Quantity;

constexpr Variable kVariables[] = {
    {1, "BSP", "kn", 2, 0, 1, kBsp},
    {2, "AWA", "deg", 0, 1, 1, kAwa},
    {3, "AWS", "kn", 1, 0, 1, kAws},
    {4, "TWA", "deg", 0, 1, 1, kTwa},
    {5, "TWS", "kn", 1, 0, 1, kTws},
    {6, "TWD", "degT", 0, 0, 1, kTwd},
    {7, "HDG", "degT", 0, 0, 1, kHdg},
    {8, "COURSE", "degT", 0, 0, 1, kCourse},
    {9, "LEEWAY", "deg", 1, 1, 1, kLeeway},
    {10, "HEEL", "deg", 1, 1, 1, kHeel},
    {11, "TRIM", "deg", 1, 1, 1, kTrim},
    {12, "RUDDER", "deg", 1, 1, 1, kRudder},
    {13, "ROT", "deg/s", 1, 1, 1, kRateOfTurn},
    {14, "COG", "degT", 0, 0, 2, kCog},
    {15, "SOG", "kn", 2, 0, 2, kSog},
    {16, "SET", "degT", 0, 0, 2, kSet},
    {17, "DRIFT", "kn", 1, 0, 2, kDrift},
    {18, "LAT", "deg", 4, 1, 2, kLat},
    {19, "LON", "deg", 4, 1, 2, kLon},
    {20, "VARIATION", "deg", 1, 1, 2, kVariation},
    {21, "LOG", "nm", 2, 0, 2, kLog},
    {25, "DEPTH", "ft", 1, 0, 3, kDepth},
    {26, "SEATEMP", "degC", 1, 0, 3, kSeaTemp},
    {27, "AIRTEMP", "degC", 1, 0, 3, kAirTemp},
    {28, "BARO", "hPa", 1, 0, 3, kBaro},
    {29, "GWD", "degT", 0, 0, 3, kGroundWindDirection},
    {30, "GWS", "kn", 1, 0, 3, kGroundWindSpeed},
    {35, "VMG", "kn", 2, 1, 4, kVmg},
    {36, "TARGBSP", "kn", 2, 0, 4, kTargetBsp},
    {37, "TARGTWA", "deg", 0, 1, 4, kTargetTwa},
    {38, "TARGVMG", "kn", 2, 1, 4, kTargetVmg},
    {39, "POLBSP", "kn", 2, 0, 4, kPolarBsp},
    {40, "POLPERCENT", "%", 0, 0, 4, kPolarPercent},
    {45, "MKDIST", "nm", 2, 0, 5, kMarkDistance},
    {46, "MKBRG", "degT", 0, 0, 5, kMarkBearing},
    {47, "MKTIME", "s", 0, 0, 5, kMarkTime},
    {50, "TIMER", "s", 0, 0, 5, kTimer},
    {51, "TIMETOGUN", "day", 6, 0, 5, kTimeToGun},
    {60, "VOLTS", "V", 1, 0, 6, kVolts},
    {61, "MASTANGLE", "deg", 1, 1, 6, kMastAngle},
    {62, "FORESTAY", "t", 2, 0, 6, kForestay},
    {63, "BACKSTAY", "t", 2, 0, 6, kBackstay},
};

}  // namespace

std::span<const Variable> Variables() { return kVariables; }

std::optional<Quantity> QuantityOf(std::int32_t number) {
    const auto found = std::ranges::lower_bound(kVariables, number, {}, &Variable::number);
    if (found == std::end(kVariables) || found->number != number) return std::nullopt;
    return found->quantity;
}

std::string VariableFileText() {
    std::string text =
        "; Variables of the instrument system\n"
        "; number, name, unit, decimals, signed, page\n"
        "\n"
        "[system]\n"
        "version 6\n"
        "\n"
        "[variables]\n";
    for (const Variable& v : Variables()) {
        text += Printed("%3d %-15s %-7s %d %d %d\n", static_cast<int>(v.number), v.name, v.unit, v.decimals, v.isSigned, v.page);
    }
    return text;
}

}  // namespace twr
