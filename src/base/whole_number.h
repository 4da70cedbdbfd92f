// Whole numbers from doubles of any size. A value that doesn't fit, infinities and NaN included, gives the least number of the
// type, as the processor's own conversion does; a plain cast would be undefined.
#pragma once
#include <cstdint>
#include <limits>

namespace twr {

// Truncates towards zero.
template <class Integer>
Integer WholeNumber(double value) {
    constexpr double kLeast = static_cast<double>(std::numeric_limits<Integer>::min());
    // -kLeast is the first number above the greatest one, which a double may not be able to distinguish from it.
    const bool fits = (value >= kLeast || value > kLeast - 1.0) && value < -kLeast;
    return fits ? static_cast<Integer>(value) : std::numeric_limits<Integer>::min();
}

}  // namespace twr
