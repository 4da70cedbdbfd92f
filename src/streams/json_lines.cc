#include "streams/json_lines.h"

#include <charconv>

#include "core/record_access.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr std::size_t kLongestText = 128;  // decimals are another program's choice, up to 65535

// A plain word for the unit in which a type is published; nullptr if it has none.
const char* UnitWord(std::int16_t type) {
    switch (type) {
        case kTypeDateTime:
        case kTypeDuration:
            return "days";
        case kTypeDepth:
        case kTypeMetres:
            return "m";
        case kTypeDistance:
        case kTypeShortDistance:
            return "nm";
        case kTypeBearing:
        case kTypeAngle:
        case kTypeWindAngle:
        case kTypeLatitude:
        case kTypeLongitude:
            return "deg";
        case kTypePercent:
            return "%";
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return "kn";
        case kTypeTemperature:
            return "C";
        case kTypeTurnRate:
            return "deg/s";
        case kTypePressure:
            return "Pa";
        default:
            return nullptr;
    }
}

template <class Number>
void AppendNumber(std::string& out, Number number) {
    char digits[32];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c < 0xE000; }

void AppendEscaped(std::string& out, char16_t c) {
    constexpr const char* kHex = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += kHex[c >> shift & 0xF];
}

// Half of a surrogate pair, which no reader accepts, becomes U+FFFD.
void AppendQuoted(std::string& out, std::u16string_view text) {
    out += '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'"' || c == u'\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c >= 0x20 && c < 0x7F) {
            out += static_cast<char>(c);
        } else if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            AppendEscaped(out, c);
            AppendEscaped(out, text[++i]);
        } else {
            AppendEscaped(out, IsHighSurrogate(c) || IsLowSurrogate(c) ? u'\uFFFD' : c);
        }
    }
    out += '"';
}

// null without a text.
void AppendText(std::string& out, std::u16string_view text) {
    if (text.empty()) {
        out += "null";
    } else {
        AppendQuoted(out, text);
    }
}

void AppendUnit(std::string& out, const char* unit) {
    if (!unit) {
        out += "null";
    } else {
        ((out += '"') += unit) += '"';
    }
}

// In the user's units. Empty if the value can't be turned into them.
std::u16string TextOf(const CCore& core, ChannelId channel, BoatSlot boat, double value) {
    const bool trueBearing = core.ChannelTypeOf(channel) == kTypeBearing && Load(core.View()->sysFlag[kFlagMagnetic]) == 0;
    const double shown = trueBearing ? core.ApplyVariation(value, boat) : core.ToDisplayUnits(channel, value, kNoValue);
    return shown == kNoValue ? std::u16string() : core.ChannelText(channel, shown).substr(0, kLongestText);
}

}  // namespace

void AppendJsonLine(std::string& out, const Change& change, const CCore& core) {
    const ChannelId source = core.ResolveAlternate(core.ResolveAlternate(change.channel, true), true);
    out += R"({"time":")";
    AppendIsoTime(out, change.time);
    out += R"(","id":)";
    AppendNumber(out, change.channel);
    out += R"(,"name":)";
    AppendText(out, core.ChannelName(change.channel));
    out += R"(,"boat":)";
    AppendNumber(out, change.boat);
    out += R"(,"value":)";
    const bool missing = change.value == kNoValue;
    if (missing) {
        out += "null";
    } else {
        AppendNumber(out, change.value);
    }
    out += R"(,"unit":)";
    AppendUnit(out, source < kChannelCount ? UnitWord(core.ChannelTypeOf(source)) : nullptr);
    out += R"(,"text":)";
    AppendText(out, missing || source >= kChannelCount ? std::u16string() : TextOf(core, source, change.boat, change.value));
    out += "}\n";
}

}  // namespace twr
