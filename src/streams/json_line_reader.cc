#include <nlohmann/json.hpp>

#include "streams/iso_time.h"
#include "streams/json_lines.h"
#include "streams/recording_format.h"

namespace twr {
namespace {

using Json = nlohmann::json;

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

// A line with "format" is no change.
ReadLine ReadHeader(const Json& object) {
    if (object["format"] != kRecordingFormat) return {{}, "\"format\" is none that is known here"};
    const auto version = object.find("version");
    const bool known = version != object.end() && version->is_number_integer() && *version <= kRecordingVersion;
    return known ? ReadLine{} : ReadLine{{}, "it is the recording of a later version; take a later halyrigctl"};
}

}  // namespace

ReadLine ParseJsonLine(std::string_view line) {
    const Json object = Json::parse(line, nullptr, false);
    if (!object.is_object()) return {{}, "it is no JSON object"};
    if (object.contains("format")) return ReadHeader(object);
    if (object.contains("gap")) return {};
    const auto time = MomentIn(object);
    if (!time) return {{}, "\"time\" must be a moment such as \"2026-11-25T01:02:03.4Z\""};
    const auto channel = Below(kChannelCount, object, "id");
    if (!channel) return {{}, "\"id\" must be a channel's number, 0 to 413"};
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
        if (read.change) return read.change;
        if (!lines_.HasEnd() || read.fault.empty()) continue;
        fault_ = "line " + std::to_string(number_) + ": " + read.fault;
    }
    return std::nullopt;
}

}  // namespace twr
