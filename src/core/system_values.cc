// SPDX-License-Identifier: MIT
// The numbered settings of the suite, with their bounds.
#include <algorithm>
#include <optional>

#include "core/core.h"
#include "core/days.h"
#include "core/record_access.h"

namespace twr {
namespace {

// The greatest value of sysInt[index]; the least is 0. Indices beyond the table have no bounds.
constexpr std::int32_t kUnbounded = 2147483647;
constexpr std::int32_t kSysIntMax[] = {kUnbounded, 2, 2, 5, 5, 1, 6, kUnbounded, 2, 4};

}  // namespace

bool CCore::SetSystemValue(std::uint32_t index, double value) {
    if (!view_ || index >= kSysValueCount) return false;
    if (index == kValueBoatLength) value = std::max(1.0, value);
    if (index == 5) value = std::max(0.01, std::min(10.0, value));
    if (index == kValueGun) {
        gunMark_ = 0.0;
        StampTime();
        const double now = days_;
        BoatBlock& own = view_->fullBlocks[0];
        Put(own.value[kGunBlwLn], kNoValue);
        Put(own.time[kGunBlwLn], now);
        Put(own.aux[kGunBlwLn], kNoValue);
        Put(own.damped[kGunBlwLn], kNoValue);
    }
    Put(view_->sysValue[index], value);
    return true;
}

void CCore::SetSystemInt(std::uint32_t index, std::int32_t value) {
    if (!view_ || index >= kSysIntCount) return;
    if (index < std::size(kSysIntMax)) value = std::clamp(value, 0, kSysIntMax[index]);
    Put(view_->sysInt[index], value);
}

}  // namespace twr
