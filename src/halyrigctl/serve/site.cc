// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/site.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/numbers.h"
#include "base/version.h"
#include "core/days.h"
#include "core/record_access.h"
#include "core/units.h"
#include "halyrigctl/check/check_setup.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/serve/page_files.h"
#include "halyrigctl/serve/page_talk.h"
#include "halyrigctl/serve/signalk_talk.h"
#include "halyrigctl/setup/names.h"
#include "streams/gzip.h"

namespace twr {
namespace {

constexpr double kCheckLasts = 1.0 / kSecondsPerDay;  // it reads many files, and is the same for all

constexpr struct {
    std::string_view ending, type;
} kTypes[] = {{".html", "text/html; charset=utf-8"},
              {".js", "text/javascript"},
              {".css", "text/css"},
              {".svg", "image/svg+xml"},
              {".png", "image/png"},
              {".webmanifest", "application/manifest+json"}};

std::string_view TypeOf(std::string_view name) {
    const auto found = std::ranges::find_if(kTypes, [&](const auto& row) { return name.ends_with(row.ending); });
    return found == std::end(kTypes) ? "text/plain; charset=utf-8" : found->type;
}

WebAnswer FileOfPage(std::string_view name, bool takesGzip) {
    const auto files = PageFiles();
    const auto file = std::ranges::find(files, name, &PageFile::name);
    if (file == files.end()) return NoAnswer(404, "there is no such file");
    return {.type = TypeOf(name),
            .body = takesGzip ? std::string(file->bytes) : Unpacked(file->bytes),
            .packed = takesGzip,
            .tag = file->tag};
}

std::string_view KindOf(std::int16_t type) {
    switch (type) {
        case kTypeDateTime:
            return "time";
        case kTypeDuration:
            return "duration";
        case kTypeDepth:
            return "depth";
        case kTypeDistance:
        case kTypeShortDistance:
            return "distance";
        case kTypeBearing:
            return "bearing";
        case kTypeAngle:
            return "angle";
        case kTypeLatitude:
            return "latitude";
        case kTypeLongitude:
            return "longitude";
        case kTypePercent:
            return "percent";
        case kTypeBoatSpeed:
            return "speed";
        case kTypeWindAngle:
            return "wind-angle";
        case kTypeTemperature:
            return "temperature";
        case kTypeBarometer:
        case kTypePressure:
            return "pressure";
        case kTypeTurnRate:
            return "turn-rate";
        case kTypeWindSpeed:
            return "wind-speed";
        default:
            return "number";
    }
}

Json ChannelRowOf(CCore& core, ChannelId channel, BoatSlot boats, const UnitSettings& settings) {
    const ChannelInfo& info = ChannelCatalogue()[channel];
    const std::int16_t type = core.ChannelTypeOf(channel);
    Json row{{"id", channel},
             {"name", ToUtf8(NameForPeople(core, channel))},
             {"longName", ToUtf8(info.longName)},
             {"unit", TextOrNull(UnitLabel(type, settings))},
             {"kind", KindOf(type)},
             {"boats", Json::array()}};
    if (info.min != info.max) row["min"] = info.min, row["max"] = info.max;
    for (BoatSlot boat = 0; boat < std::max(boats, BoatSlot{1}); ++boat) {
        const bool has = IsAlternating(channel) ? boat < kFullBoatCount : bool(EntryOf(*core.View(), channel, boat));
        if (has) row["boats"].push_back(boat);
    }
    return row;
}

// A channel and a boat that exist.
std::optional<ChannelPlace> PlaceIn(const Target& target) {
    const auto channel = target.Number("channel", kChannelCount), boat = target.Number("boat", kBoatCount, 0);
    if (!channel || !boat) return std::nullopt;
    return ChannelPlace(static_cast<ChannelId>(*channel), static_cast<BoatSlot>(*boat));
}

constexpr const char* kNoRecord = "there is no record, since no program of the suite is running";
constexpr const char* kNoPlace = "there is no such channel or boat";

}  // namespace

WebAnswer NoAnswer(int status, std::string_view why) { return {.status = status, .body = JsonLine({{"error", why}})}; }

WebAnswer Site::Answer(const WebRequest& request) {
    static constexpr struct {
        std::string_view path;
        WebAnswer (Site::*answer)(const Target&);
    } kRoutes[] = {{"/halyrig/v1/channels", &Site::Channels},
                   {"/halyrig/v1/explain", &Site::ExplainOne},
                   {"/halyrig/v1/check", &Site::CheckSetup},
                   {"/halyrig/v1/boats", &Site::Boats},
                   {"/halyrig/v1/history", &Site::HistoryOf}};
    constexpr std::string_view kPage = "/page/";
    constexpr std::string_view kSignalK = "/signalk";
    const auto target = ParseTarget(request.target);
    if (target && target->path == "/signalk/v1/auth/login")
        return NoAnswer(501, "nobody logs in here: all may read, and nobody may write");
    if (request.method != "GET" && request.method != "HEAD") return NoAnswer(405, "this server only tells, and changes nothing");
    if (!target) return NoAnswer(400, "that is no path");
    if (target->path == "/") return FileOfPage("index.html", request.takesGzip);
    if (target->path.starts_with(kPage)) return FileOfPage(target->path.substr(kPage.size()), request.takesGzip);
    if (target->path.starts_with(kSignalK)) return SignalK(target->path.substr(kSignalK.size()), request);
    const auto route = std::ranges::find(kRoutes, target->path, [](const auto& row) { return row.path; });
    return route == std::end(kRoutes) ? NoAnswer(404, "there is nothing of that name") : (this->*route->answer)(*target);
}

std::unique_ptr<WebTalk> Site::Talk(const WebRequest& request) {
    const auto target = ParseTarget(request.target);
    if (!target) return nullptr;
    if (target->path == "/halyrig/v1/stream") return std::make_unique<PageTalk>(lookout_);
    if (target->path == "/signalk/v1/stream") return std::make_unique<SignalKTalk>(lookout_, signalK_, *target);
    return nullptr;
}

WebAnswer Site::Channels(const Target&) {
    CCore* core = lookout_.Core();
    if (!core) return NoAnswer(503, kNoRecord);
    const UnitSettings settings = UnitSettingsOf(*core->View());
    const BoatSlot boats = std::min(Load(core->View()->boatCount), kBoatCount);
    Json rows = Json::array();
    for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel)
        rows.push_back(ChannelRowOf(*core, channel, boats, settings));
    const std::string own = ToUtf8(FieldText(core->View()->boats[0].name));
    return {.body = JsonLine({{"name", !name_.empty() ? name_
                                       : !own.empty() ? own
                                                      : "Halyrig"},
                              {"version", HALYRIG_VERSION},
                              {"channels", rows}})};
}

WebAnswer Site::ExplainOne(const Target& target) {
    const auto place = PlaceIn(target);
    if (!place) return NoAnswer(404, kNoPlace);
    if (!lookout_.Core()) return NoAnswer(503, kNoRecord);
    return {.body = ExplainAsJson(*lookout_.Core(), place->first, place->second, lookout_.Now())};
}

WebAnswer Site::CheckSetup(const Target&) {
    if (check_.empty() || !(std::fabs(lookout_.Time() - checkedAt_) < kCheckLasts)) {
        check_ = CheckAsJson(LookAtSetup(system_, {}));
        checkedAt_ = lookout_.Time();
    }
    return {.body = check_};
}

WebAnswer Site::Boats(const Target&) {
    CCore* core = lookout_.Core();
    return core ? WebAnswer{.body = BoatsAsJson(*core->View(), lookout_.Time())} : NoAnswer(503, kNoRecord);
}

// `path` is that behind /signalk.
WebAnswer Site::SignalK(std::string_view path, const WebRequest& request) {
    constexpr std::string_view kApi = "/v1/api";
    if (path.empty() || path == "/") return {.body = SignalKDiscovery(request.host)};
    if (!path.starts_with(kApi)) return NoAnswer(404, "Signal K has no such path here");
    path.remove_prefix(kApi.size());
    if (!path.empty() && !path.starts_with('/')) return NoAnswer(404, "Signal K has no such path here");
    path.remove_prefix(std::min<std::size_t>(1, path.size()));
    auto found = signalK_.At(path);
    return found ? WebAnswer{.body = std::move(*found)} : NoAnswer(404, "nothing was ever published there");
}

WebAnswer Site::HistoryOf(const Target& target) {
    const auto place = PlaceIn(target);
    if (!place) return NoAnswer(404, kNoPlace);
    CCore* core = lookout_.Core();
    if (!core) return NoAnswer(503, kNoRecord);
    const ChannelPlace source(core->SourceOf(place->first), place->second);
    std::string points, unit = "null";
    if (source.first < kChannelCount) {
        unit = InJson(UnitLabel(core->ChannelTypeOf(source.first), UnitSettingsOf(*core->View())));
        for (const auto& [time, value] : lookout_.Past().Of(source)) {
            points += (points.empty() ? "[" : ",[") + Printed("%.3f", SecondsSince1970(time)) + "," +
                      InJson(lookout_.ForPage(source, value)) + "]";
        }
    }
    return {.body = Printed("{\"id\":%u,\"boat\":%u,\"unit\":", unsigned{place->first}, unsigned{place->second}) + unit +
                    ",\"points\":[" + points + "]}"};
}

}  // namespace twr
