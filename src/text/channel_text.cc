// SPDX-License-Identifier: MIT
// The text of a channel's value.
#include <algorithm>
#include <cmath>
#include <span>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/core.h"
#include "core/record_access.h"
#include "text/texts.h"

namespace twr {
namespace {

constexpr std::uint16_t kNoFixedPrec = 255;
constexpr unsigned kMostDecimals = 1074;  // behind them every double has zeros only

constexpr const char16_t* kGpsMethods[] = {u"No GPS", u"GPS", u"DGPS", u"PGPS", u"RTK", u"RTK", u"DR", u"Manual", u"Simulate"};
constexpr const char16_t* kGpsModes[] = {u"1D", u"2D", u"3D", u"Auto", nullptr, nullptr, u"Error", u"Null"};

// The name of a number, or its digits if it has none.
std::u16string NameText(std::span<const char16_t* const> names, double value) {
    const auto number = WholeNumber<std::int32_t>(std::round(value));
    const bool named = number >= 0 && static_cast<std::size_t>(number) < names.size();
    const char16_t* name = named ? names[static_cast<std::size_t>(number)] : nullptr;
    return name ? name : FromBytes(std::to_string(number));
}

// The suffix of the absolute value, in place of a sign; empty for a channel that shows its sign.
std::u16string_view SideSuffix(ChannelId channel, double value) {
    switch (channel) {
        case kMagVar:
            return value > 0.0 ? u"°e" : u"°w";
        case kBiasAng:
            return value > 0.0 ? u"°s" : u"°p";
        case kBiasL:
        case kGateBiasL:
            return value > 0.0 ? u"s" : u"p";
        case kDMkBrgCog:
            return value >= 0.0 ? u"R" : u"L";
        default:
            return {};
    }
}

std::string FormatOf(std::int16_t type, unsigned prec) {
    if (type == kTypeBearing) return prec == 0 ? "%03.0lf" : Printed("%%0%u.%ulf", prec + 4, prec);
    return prec == kNoFixedPrec ? "%lf" : Printed("%%.%ulf", prec);
}

// Up to 65535 decimals, which another program may ask for; printing all of them would take milliseconds.
std::u16string NumberText(std::int16_t type, unsigned prec, double value) {
    const unsigned printed = std::isfinite(value) ? std::min(prec, kMostDecimals) : prec;
    return FromBytes(Printed(FormatOf(type, printed).c_str(), value)).append(prec - printed, u'0');
}

}  // namespace

std::string CCore::ChannelFormat(ChannelId channel) const {
    channel = ResolveAlternate(channel, true);
    if (!view_ || channel >= kChannelCount) return {};
    return FormatOf(ChannelTypeOf(channel), Load(view_->channels[channel].prec));
}

std::u16string CCore::ChannelText(ChannelId channel, double value) const {
    channel = ResolveAlternate(channel, true);
    if (!view_ || value == kNoValue || channel >= kChannelCount) return u"- -";
    switch (channel) {
        case kSail:
            return FieldText(view_->sailText);
        case kSailMark:
            return FieldText(view_->sailMarkText);
        case kSailNext:
            return FieldText(view_->sailNextText);
        case kSailEvt:
            return FieldText(view_->sailEvtText);
        case kGpsMethod:
            return NameText(kGpsMethods, value);
        case kGpsMode:
            return NameText(kGpsModes, value);
        default:
            break;
    }
    switch (ChannelTypeOf(channel)) {
        case kTypeDateTime:
            return TimeText(value);
        case kTypeDuration:
            return DurationText(value);
        case kTypeLatitude:
            return LatitudeText(value);
        case kTypeLongitude:
            return LongitudeText(value);
        default:
            break;
    }
    const std::u16string_view suffix = SideSuffix(channel, value);
    const ChannelId formatted = ResolveAlternate(channel, true);  // an alternating channel may stand for another one
    if (formatted >= kChannelCount) return std::u16string(suffix);
    const unsigned prec = Load(view_->channels[formatted].prec);
    return NumberText(ChannelTypeOf(formatted), prec, suffix.empty() ? value : std::fabs(value)).append(suffix);
}

}  // namespace twr
