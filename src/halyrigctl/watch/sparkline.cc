// SPDX-License-Identifier: MIT
#include "halyrigctl/watch/sparkline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/numbers.h"
#include "base/wide_text.h"

namespace twr {
namespace {

constexpr double kSecondsPerColumn = 60.0 / Sparkline::kWidth;
constexpr char16_t kLowestBar = u'\u2581';
constexpr int kBars = 8;

// A smaller change, as a part of the value, does not fill the height: it would look like a great one.
constexpr double kLeastSpan = 0.01;

// The lower above the higher one if there is no value.
template <class Columns>
std::pair<double, double> Bounds(const Columns& values) {
    double low = std::numeric_limits<double>::max(), high = std::numeric_limits<double>::lowest();
    for (const auto& value : values) {
        if (value) low = std::min(low, *value), high = std::max(high, *value);
    }
    return {low, high};
}

}  // namespace

void Sparkline::Add(double seconds, std::optional<double> value) {
    const auto number = static_cast<std::int64_t>(std::floor(seconds / kSecondsPerColumn));
    const std::int64_t step = number - newest_;
    if (step < 0 || step >= static_cast<std::int64_t>(kWidth)) {
        columns_.fill(std::nullopt);  // the first look, one after a long pause, or the clock was set
    } else {
        const auto before = columns_.back();
        std::shift_left(columns_.begin(), columns_.end(), step);
        std::fill(columns_.end() - step, columns_.end(), before);
    }
    columns_.back() = value;
    newest_ = number;
}

Sparkline::Columns Sparkline::Unrolled(bool circular) const {
    Columns values = columns_;
    std::optional<double> before;
    for (auto& value : values) {
        if (!value) continue;
        if (circular && before) value = *before + std::remainder(*value - *before, 360.0);
        before = value;
    }
    return values;
}

std::string Sparkline::Text(bool circular) const {
    const Columns values = Unrolled(circular);
    const auto [low, high] = Bounds(values);
    const double span = std::max(high - low, kLeastSpan * std::max(std::fabs(low), std::fabs(high)));
    std::u16string text;
    for (const auto& value : values) {
        const double height = !value || span == 0.0 ? 0.5 : 0.5 + (*value - (low + high) / 2) / span;
        const int bar = std::clamp(static_cast<int>(height * kBars), 0, kBars - 1);
        text += value ? static_cast<char16_t>(kLowestBar + bar) : u' ';
    }
    return ToUtf8(text);
}

// To so many digits that the course of the minute can be told.
std::string Sparkline::Scale(bool circular) const {
    const auto [low, high] = Bounds(Unrolled(circular));
    if (low > high) return {};
    const int decimals = high - low >= 10.0 ? 0 : high - low >= 1.0 ? 1 : 2;
    const auto digits = [&](double value) {
        if (circular) value = value < -180.0 ? value + 360.0 : value >= 360.0 ? value - 360.0 : value;
        return std::fabs(value) >= 1e5 ? Printed("%.2g", value) : Printed("%.*f", decimals, value);
    };
    return digits(low) + ".." + digits(high);
}

}  // namespace twr
