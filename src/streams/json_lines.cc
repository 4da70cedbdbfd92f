// SPDX-License-Identifier: MIT
#include "streams/json_lines.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "base/version.h"
#include "core/record_access.h"
#include "core/units.h"
#include "streams/iso_time.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

using Json = nlohmann::json;

constexpr const char* kRecordingFormat = "halyrig-record";
constexpr int kRecordingVersion = 1;       // of what is written; it and all earlier ones are read
constexpr std::size_t kLongestText = 128;  // decimals are another program's choice, up to 65535

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

// In the user's units. Empty if the value can't be turned into them.
std::u16string TextOf(const CCore& core, ChannelId channel, BoatSlot boat, double value) {
    const bool trueBearing = core.ChannelTypeOf(channel) == kTypeBearing && Load(core.View()->sysFlag[kFlagMagnetic]) == 0;
    const double shown = trueBearing ? core.ApplyVariation(value, boat) : core.ToDisplayUnits(channel, value, kNoValue);
    return shown == kNoValue ? std::u16string() : core.ChannelText(channel, shown).substr(0, kLongestText);
}

void AppendMoment(std::string& out, const char* member, double days) {
    ((out += '"') += member) += "\":\"";
    AppendIsoTime(out, days);
    out += '"';
}

class JsonLines final : public StreamFormat {
    void Append(std::string& out, std::span<const Change> changes, const Follower& follower) override {
        for (const Change& change : changes) AppendJsonLine(out, change, follower.Core());
    }
};

// The whole number that a member holds, if it is below a bound.
std::optional<std::uint32_t> Below(std::uint32_t bound, const Json& object, const char* member) {
    const auto found = object.find(member);
    if (found == object.end() || !found->is_number_unsigned() || found->get<std::uint64_t>() >= bound) return std::nullopt;
    return found->get<std::uint32_t>();
}

std::optional<double> MomentIn(const Json& object) {
    const auto found = object.find("time");
    return found != object.end() && found->is_string() ? ParseIsoTime(found->get_ref<const std::string&>()) : std::nullopt;
}

std::optional<double> ValueIn(const Json& object) {
    const auto found = object.find("value");
    if (found == object.end() || !(found->is_number() || found->is_null())) return std::nullopt;
    return found->is_null() ? kNoValue : found->get<double>();
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A line piece by piece.
class Pieces {
public:
    explicit Pieces(std::string_view line) : rest_(line) {}

    bool Take(std::string_view expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(expected.size());
        return true;
    }
    // What is between quotation marks, if nothing in it is escaped or has to be; the first mark is taken already.
    std::optional<std::string_view> TakePlainText() {
        for (std::size_t i = 0; i < rest_.size(); ++i) {
            const char c = rest_[i];
            if (c == '"') return Cut(i, 1);
            if (c == '\\' || c < ' ' || c > '~') break;
        }
        return std::nullopt;
    }
    // As JSON writes one.
    std::optional<double> TakeNumber() {
        std::size_t at = rest_.starts_with('-') ? 1 : 0;
        const std::size_t whole = SkipDigits(at);
        bool formed = whole == 1 || (whole > 1 && rest_[at] != '0');
        at += whole;
        for (const std::string_view part : {".", "e"}) {
            if (!rest_.substr(at).starts_with(part)) continue;
            ++at;
            if (part == "e" && at < rest_.size() && (rest_[at] == '-' || rest_[at] == '+')) ++at;
            const std::size_t digits = SkipDigits(at);
            formed = formed && digits > 0;
            at += digits;
        }
        double number = 0.0;
        const char* const end = rest_.data() + at;
        if (!formed || std::from_chars(rest_.data(), end, number).ec != std::errc()) return std::nullopt;
        Cut(at, 0);
        return number;
    }
    std::optional<std::uint32_t> TakeBelow(std::uint32_t bound) {
        const std::size_t digits = SkipDigits(0);
        if (digits == 0 || digits > 3 || (digits > 1 && rest_[0] == '0')) return std::nullopt;
        std::uint32_t number = 0;
        for (const char c : Cut(digits, 0)) number = number * 10 + static_cast<std::uint32_t>(c - '0');
        return number < bound ? std::optional(number) : std::nullopt;
    }
    bool TakeTextOrNull() { return Take("null") || (Take("\"") && TakePlainText()); }
    bool AtEnd() const { return rest_.empty(); }

private:
    std::size_t SkipDigits(std::size_t from) const {
        std::size_t at = from;
        while (at < rest_.size() && IsDigit(rest_[at])) ++at;
        return at - from;
    }
    std::string_view Cut(std::size_t count, std::size_t behind) {
        const std::string_view piece = rest_.substr(0, count);
        rest_.remove_prefix(count + behind);
        return piece;
    }

    std::string_view rest_;
};

// A line in the very form in which this program writes one, as almost all are: a tenth of the time that a parser takes. nullopt for
// every other, which may be a good one all the same.
std::optional<Change> ReadUsualLine(std::string_view line) {
    Pieces pieces(line);
    if (!pieces.Take(R"({"time":")")) return std::nullopt;
    const auto moment = pieces.TakePlainText();
    const auto time = moment ? ParseIsoTime(*moment) : std::nullopt;
    if (!time || !pieces.Take(R"(,"id":)")) return std::nullopt;
    const auto channel = pieces.TakeBelow(kChannelCount);
    if (!channel) return std::nullopt;
    const bool named = pieces.Take(R"(,"name":)");
    if (named && (!pieces.TakeTextOrNull() || !pieces.Take(R"(,"boat":)"))) return std::nullopt;
    const auto boat = named ? pieces.TakeBelow(kBoatCount) : 0;
    if (!boat || !pieces.Take(R"(,"value":)")) return std::nullopt;
    const auto value = pieces.Take("null") ? kNoValue : pieces.TakeNumber();
    if (!value) return std::nullopt;
    if (named && !(pieces.Take(R"(,"unit":)") && pieces.TakeTextOrNull())) return std::nullopt;
    if (named && !(pieces.Take(R"(,"text":)") && pieces.TakeTextOrNull())) return std::nullopt;
    return pieces.Take("}") && pieces.AtEnd() ? std::optional(Change{*time, *channel, *boat, *value}) : std::nullopt;
}

// A line with "format" is no change.
ReadLine ReadHeader(const Json& object) {
    if (object["format"] != kRecordingFormat) return {{}, "\"format\" is none that is known here"};
    const auto version = object.find("version");
    const bool known = version != object.end() && version->is_number_integer() && *version <= kRecordingVersion;
    return known ? ReadLine{{}, {}, Seam::kStart} : ReadLine{{}, "it is the recording of a later version; take a later halyrigctl"};
}

}  // namespace

std::unique_ptr<StreamFormat> MakeJsonLines() { return std::make_unique<JsonLines>(); }

void AppendJsonLine(std::string& out, const Change& change, const CCore& core) {
    const ChannelId source = core.SourceOf(change.channel);
    out += '{';
    AppendMoment(out, "time", change.time);
    out += R"(,"id":)";
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
    AppendText(out, source < kChannelCount ? InternalUnit(core.ChannelTypeOf(source)) : std::u16string_view());
    out += R"(,"text":)";
    AppendText(out, missing || source >= kChannelCount ? std::u16string() : TextOf(core, source, change.boat, change.value));
    out += "}\n";
}

void AppendHeader(std::string& out, double start) {
    ((out += R"({"format":")") += kRecordingFormat) += R"(","version":)";
    AppendNumber(out, kRecordingVersion);
    out += R"(,"halyrig":")" HALYRIG_VERSION R"(","units":"internal",)";
    AppendMoment(out, "start", start);
    out += "}\n";
}

void AppendMark(std::string& out, double now) {
    out += '{';
    AppendMoment(out, "time", now);
    out += R"(,"id":0,"value":)";
    AppendNumber(out, now);
    out += "}\n";
}

void AppendGap(std::string& out, double from, double to) {
    out += R"({"gap":{)";
    AppendMoment(out, "from", from);
    out += ',';
    AppendMoment(out, "to", to);
    out += "}}\n";
}

ReadLine ParseJsonLine(std::string_view line) {
    if (const auto usual = ReadUsualLine(line)) return {usual};
    return ParseAnyJsonLine(line);
}

ReadLine ParseAnyJsonLine(std::string_view line) {
    const Json object = Json::parse(line, nullptr, false);
    if (!object.is_object()) return {{}, "it is no JSON object"};
    if (object.contains("format")) return ReadHeader(object);
    if (object.contains("gap")) return {{}, {}, Seam::kGap};
    const auto time = MomentIn(object);
    if (!time) return {{}, "\"time\" must be a moment such as \"2026-11-25T01:02:03.4Z\""};
    const auto channel = Below(kChannelCount, object, "id");
    if (!channel) return {{}, "\"id\" must be a channel's number, 0 to " + std::to_string(kChannelCount - 1)};
    const auto boat = object.contains("boat") ? Below(kBoatCount, object, "boat") : 0;
    if (!boat) return {{}, "\"boat\" must be 0 to 99"};
    const auto value = ValueIn(object);
    if (!value) return {{}, "\"value\" must be a number, or null"};
    return {Change{*time, *channel, *boat, *value}};
}

std::optional<Change> JsonLineReader::Next() {
    while (fault_.empty() && lines_.Next()) {
        if (lines_.HasEnd()) ++number_;
        if (lines_.Line().find_first_not_of(" \t\r") == std::string::npos && !lines_.Cut()) continue;
        ReadLine read = lines_.Cut() ? ReadLine{{}, "it is too long"} : ParseJsonLine(lines_.Line());
        seam_ = std::max(seam_, read.seam);
        if (read.change) return read.change;
        torn_ = !lines_.HasEnd() && !read.fault.empty();
        if (!lines_.HasEnd() || read.fault.empty()) continue;
        fault_ = "line " + std::to_string(number_) + ": " + read.fault;
    }
    return std::nullopt;
}

}  // namespace twr
