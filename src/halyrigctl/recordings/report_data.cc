// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/report_data.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/angles.h"
#include "base/version.h"
#include "core/days.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/recordings/table_units.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr std::size_t kMostRows = 30'000;  // eight hours of seconds; about a megabyte
constexpr double kMostTold = 1e9;          // whatever a file says
constexpr int kPlaceDigits = 6;            // of degrees: a tenth of a metre

// What is drawn over time.
struct Column {
    ChannelId channel;
    double RaceRow::*value;
    const char* kind;  // as the page's readings have it
    int digits;        // behind the point
};
constexpr Column kColumns[] = {{kTws, &RaceRow::tws, "wind-speed", 1},
                               {kTwd, &RaceRow::twd, "bearing", 0},
                               {kBsp, &RaceRow::bsp, "speed", 2},
                               {kTargBsp, &RaceRow::targetBsp, "speed", 2},
                               {kTwa, &RaceRow::twa, "wind-angle", 0},
                               {kTargTwa, &RaceRow::targetTwa, "wind-angle", 0},
                               {kHeel, &RaceRow::heel, "angle", 1},
                               {kSog, &RaceRow::sog, "speed", 2},
                               {kDepth, &RaceRow::depth, "depth", 1},
                               {kLat, &RaceRow::latitude, "latitude", kPlaceDigits},
                               {kLon, &RaceRow::longitude, "longitude", kPlaceDigits}};

Json Number(double value, double digits = 1000.0) {
    return std::isfinite(value) ? Json(std::round(value * digits) / digits) : Json();
}

class Teller {
public:
    Teller(const CCore& core, const BoardZone& board, const RaceReport& report)
        : core_(core),
          board_(board),
          report_(report),
          rows_(report.rows),
          speed_(core, kBsp, TableUnits::kUser),
          wind_(core, kTws, TableUnits::kUser),
          twd_(core, kTwd, TableUnits::kUser) {
        step_ = static_cast<std::int64_t>(rows_.size() / kMostRows) + 1;
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (std::llround(rows_[i].time) % step_ == 0) told_.push_back(i);
        }
    }

    Json All() {
        Json json{{"name", report_.name},          {"version", HALYRIG_VERSION}, {"files", report_.files},
                  {"notes", report_.notes},        {"dated", report_.dated},     {"zone", ZoneJson()},
                  {"from", TimeOf(rows_.front())}, {"to", TimeOf(rows_.back())}, {"step", step_},
                  {"speedUnit", speed_.Name()},    {"windUnit", wind_.Name()},   {"segments", Segments()}};
        json["columns"] = Json::array();
        for (const Column& column : kColumns) json["columns"].push_back(ColumnJson(column));
        json["turns"] = Json::array();
        for (const Turn& turn : report_.turns) json["turns"].push_back(TurnJson(turn));
        json["byMarks"] = report_.legs.byMarks;
        json["legs"] = Json::array();
        for (const Leg& leg : report_.legs.all) json["legs"].push_back(LegJson(leg));
        json["starts"] = Json::array();
        for (const Start& start : report_.starts) json["starts"].push_back(StartJson(start));
        json["bands"] = Json::array();
        for (const PolarBand& band : report_.bands) json["bands"].push_back(BandJson(band));
        json["marks"] = MarksJson();
        return json;
    }

private:
    double Days(const RaceRow& row) const { return row.time / kSecondsPerDay; }
    double Epoch(double seconds) const { return report_.dated ? seconds - kDaysTo1970 * kSecondsPerDay : seconds; }
    Json TimeOf(const RaceRow& row) const { return std::llround(Epoch(row.time)); }
    double Speed(double knots) const { return std::isnan(knots) ? knots : speed_.Convert(knots, kNoValue); }

    // From when on the zone on board is so many minutes ahead of UTC.
    Json ZoneJson() const {
        Json zone = Json::array();
        int last = 0;
        for (std::size_t i = 0; i < rows_.size(); i += 60) {
            const int ahead = board_.MinutesAhead(Days(rows_[i]));
            if (i == 0 || ahead != last) zone.push_back({TimeOf(rows_[i]), ahead});
            last = ahead;
        }
        return zone;
    }

    // The first time and the number of rows without a gap.
    Json Segments() const {
        Json segments = Json::array();
        for (std::size_t k = 0; k < told_.size(); ++k) {
            const bool goesOn = k > 0 && !Parts(told_[k - 1], told_[k]);
            if (goesOn)
                segments.back()[1] = segments.back()[1].get<int>() + 1;
            else
                segments.push_back({TimeOf(rows_[told_[k]]), 1});
        }
        return segments;
    }

    bool Parts(std::size_t from, std::size_t to) const {
        for (std::size_t i = from + 1; i <= to; ++i) {
            if (IsApart(rows_[i - 1], rows_[i])) return true;
        }
        return false;
    }

    // Whole numbers of the last digit, each less the one before it, since those are short.
    Json ColumnJson(const Column& column) const {
        const ColumnUnit unit(core_, column.channel, TableUnits::kUser);
        const bool isPlace = column.digits == kPlaceDigits;
        Json values = Json::array();
        std::int64_t last = 0;
        bool any = false;
        for (const std::size_t i : told_) {
            const double value = rows_[i].*column.value;
            const double told = std::isnan(value) || isPlace ? value : unit.Convert(value, Variation(rows_[i]));
            if (!(std::fabs(told) < kMostTold) || told == kNoValue) {
                values.push_back(nullptr);
                continue;
            }
            any = true;
            const std::int64_t whole = std::llround(told * std::pow(10.0, column.digits));
            values.push_back(whole - last);
            last = whole;
        }
        return {{"id", column.channel},
                {"name", ToUtf8(CatalogueName(column.channel))},
                {"longName", ToUtf8(ChannelCatalogue()[column.channel].longName)},
                {"unit", TextOrNull(FromUtf8(unit.Name()))},
                {"kind", column.kind},
                {"digits", column.digits},
                {"values", any ? values : Json()}};
    }

    static double Variation(const RaceRow& row) { return std::isnan(row.variation) ? kNoValue : row.variation; }

    Json TurnJson(const Turn& turn) const {
        const RaceRow& row = rows_[turn.row];
        return {{"time", TimeOf(row)},
                {"tack", turn.tack},
                {"degrees", Number(turn.degrees, 1.0)},
                {"tws", Number(std::isnan(row.tws) ? kUnmeasured : wind_.Convert(row.tws, kNoValue), 10.0)},
                {"before", Number(Speed(turn.speedBefore), 100.0)},
                {"least", Number(Speed(turn.speedLeast), 100.0)},
                {"metres", turn.cost ? Number(turn.cost->metres, 10.0) : Json()},
                {"seconds", turn.cost ? Number(turn.cost->seconds, 10.0) : Json()}};
    }

    Json LegJson(const Leg& leg) const {
        constexpr const char* kPoints[] = {nullptr, "beat", "reach", "run"};
        const char* point = kPoints[static_cast<int>(leg.sailed)];
        double bsp = 0.0, made = 0.0, sailed = 0.0, target = 0.0, tws = 0.0;
        double speeds = 0.0, ways = 0.0, winds = 0.0;
        Vector wind;
        for (std::size_t i = leg.from; i < leg.to; ++i) {
            const RaceRow& row = rows_[i];
            if (!std::isnan(row.bsp)) bsp += row.bsp, ++speeds;
            if (!std::isnan(row.Vmg())) made += row.Vmg(), ++ways;
            if (!std::isnan(row.bsp + row.targetBsp)) sailed += row.bsp, target += row.targetBsp;
            if (!std::isnan(row.tws)) tws += row.tws, ++winds;
            const double twd = std::isnan(row.twd) ? kNoValue : twd_.Convert(row.twd, Variation(row));
            if (twd != kNoValue) wind = wind + Towards(twd, 1.0);
        }
        return {{"from", TimeOf(rows_[leg.from])},
                {"to", TimeOf(rows_[leg.to - 1])},
                {"toMark", leg.toMark},
                {"sailed", point ? Json(point) : Json()},
                {"miles", Number(leg.miles, 100.0)},
                {"tacks", leg.tacks},
                {"gybes", leg.gybes},
                {"bsp", Number(Speed(bsp / speeds), 100.0)},
                {"vmg", Number(Speed(std::fabs(made / ways)), 100.0)},
                {"percent", target > 0.0 ? Number(100.0 * sailed / target, 1.0) : Json()},
                {"tws", winds > 0.0 ? Number(wind_.Convert(tws / winds, kNoValue), 10.0) : Json()},
                {"twd", Length(wind) > 0.0 ? Number(BearingOf(wind), 1.0) : Json()}};
    }

    Json StartJson(const Start& start) const {
        Json json{{"gun", std::llround(Epoch(start.gun.time))},
                  {"seen", start.row.has_value()},
                  {"distance", Number(start.distance, 10.0)},
                  {"length", Number(start.lineLength, 10.0)},
                  {"along", Number(start.alongLine)},
                  {"crossed", Number(start.crossed, 10.0)},
                  {"line", Json()}};
        if (!start.row) return json;
        const RaceRow& row = rows_[*start.row];
        json["bsp"] = Number(Speed(row.bsp), 100.0);
        json["percent"] = Number(100.0 * row.bsp / row.targetBsp, 1.0);
        if (std::isfinite(start.lineLength)) {
            json["line"] = {{Number(row.portLatitude, 1e6), Number(row.portLongitude, 1e6)},
                            {Number(row.starboardLatitude, 1e6), Number(row.starboardLongitude, 1e6)}};
        }
        return json;
    }

    Json TargetJson(const std::optional<PolarTarget>& target) const {
        if (!target) return {};
        return {{"twa", Number(target->twa, 10.0)},
                {"bsp", Number(Speed(target->bsp), 100.0)},
                {"sailedTwa", Number(target->sailedTwa, 10.0)},
                {"sailedBsp", Number(Speed(target->sailedBsp), 100.0)}};
    }

    Json BandJson(const PolarBand& band) const {
        Json cells = Json::array();
        for (const PolarCell& cell : band.cells)
            cells.push_back({cell.angle, cell.count, Number(Speed(cell.middle), 100.0), Number(Speed(cell.fast), 100.0)});
        return {{"from", Number(wind_.Convert(band.from, kNoValue), 10.0)},
                {"to", Number(wind_.Convert(band.to, kNoValue), 10.0)},
                {"minutes", Number(static_cast<double>(band.count) / 60.0, 1.0)},
                {"cells", cells},
                {"upwind", TargetJson(band.upwind)},
                {"downwind", TargetJson(band.downwind)}};
    }

    Json MarksJson() const {
        constexpr std::size_t kMost = 100;
        Json marks = Json::array();
        for (const RaceRow& row : rows_) {
            if (std::isnan(row.markLatitude + row.markLongitude)) continue;
            Json place{Number(row.markLatitude, 1e5), Number(row.markLongitude, 1e5)};
            if (marks.size() < kMost && std::ranges::find(marks, place) == marks.end()) marks.push_back(std::move(place));
        }
        return marks;
    }

    const CCore& core_;
    const BoardZone& board_;
    const RaceReport& report_;
    const std::vector<RaceRow>& rows_;
    const ColumnUnit speed_, wind_, twd_;
    std::int64_t step_;
    std::vector<std::size_t> told_;  // rows
};

}  // namespace

std::string ReportData(const CCore& core, const BoardZone& board, const RaceReport& report) {
    std::string data = JsonLine(Teller(core, board, report).All());
    // Within an element of HTML, only this could end it.
    for (std::size_t at = 0; (at = data.find('<', at)) != std::string::npos;) data.replace(at, 1, "\\u003c");
    return data;
}

}  // namespace twr
