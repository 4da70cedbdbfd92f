// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/table_formats.h"

#include <algorithm>
#include <charconv>

#include "base/angles.h"
#include "base/numbers.h"
#include "base/version.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/recordings/board_time.h"
#include "streams/iso_time.h"
#include "streams/signalk_paths.h"

namespace twr {
namespace {

constexpr int kDigits = 10;  // of a converted value; those of the record come with all that they have

// The shortest text of the value, or of the nearest one with so many digits if it was converted.
std::string NumberText(double value, bool converted) {
    char text[64];
    const auto end = converted ? std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits)
                               : std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

class Csv final : public TableFormat {
public:
    explicit Csv(const TableLook& look) : look_(look), separator_(look.decimalComma ? ';' : ',') {}

    void Begin(std::string& out) override {
        out += "time";
        if (look_.boats) (out += separator_) += "boat";
        for (const TableColumn& column : look_.columns) {
            const std::string& unit = column.unit.Name();
            out += separator_;
            AppendCell(out, look_.headerUnits && !unit.empty() ? column.name + " (" + unit + ")" : column.name);
        }
        out += "\r\n";
    }

    void Append(std::string& out, const TableRow& row) override {
        look_.moment(out, row.time);
        if (look_.boats) (out += separator_) += std::to_string(row.boat);
        for (std::size_t i = 0; i < look_.columns.size(); ++i) {
            out += separator_;
            AppendValue(out, look_.columns[i].unit, row.values[i], row.variation);
        }
        out += "\r\n";
    }

private:
    void AppendCell(std::string& out, const std::string& text) const {
        if (text.find_first_of("\",;\r\n") == std::string::npos) {
            out += text;
            return;
        }
        out += '"';
        for (const char c : text) out.append(c == '"' ? 2 : 1, c);
        out += '"';
    }

    void AppendValue(std::string& out, const ColumnUnit& unit, double value, double variation) const {
        const double told = unit.Convert(value, variation);
        if (told == kNoValue) return;
        if (unit.IsMoment()) {
            if (HasIsoTime(told)) look_.moment(out, told);
            return;
        }
        const std::size_t start = out.size();
        out += NumberText(told, told != value);
        if (look_.decimalComma) std::replace(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), '.', ',');
    }

    const TableLook look_;
    const char separator_;
};

class JsonRows final : public TableFormat {
public:
    explicit JsonRows(const TableLook& look) : look_(look) {
        for (const TableColumn& column : look_.columns) {
            const std::string& unit = column.unit.Name();
            const bool named = look_.headerUnits && !unit.empty();
            keys_.push_back("," + JsonLine(named ? column.name + " (" + unit + ")" : column.name) + ":");
        }
    }

    void Append(std::string& out, const TableRow& row) override {
        AppendMoment(out += R"({"time":)", row.time);
        if (look_.boats) (out += R"(,"boat":)") += std::to_string(row.boat);
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            out += keys_[i];
            const ColumnUnit& unit = look_.columns[i].unit;
            const double told = unit.Convert(row.values[i], row.variation);
            if (told == kNoValue || (unit.IsMoment() && !HasIsoTime(told))) {
                out += "null";
            } else if (unit.IsMoment()) {
                AppendMoment(out, told);
            } else {
                out += NumberText(told, told != row.values[i]);
            }
        }
        out += "}\n";
    }

private:
    void AppendMoment(std::string& out, double utc) const {
        out += '"';
        look_.moment(out, utc);
        out += '"';
    }

    const TableLook look_;
    std::vector<std::string> keys_;
};

std::string XmlText(const std::string& text) {
    std::string safe;
    for (const char c : text) {
        if (c == '&') {
            safe += "&amp;";
        } else if (c == '<') {
            safe += "&lt;";
        } else if (c == '>') {
            safe += "&gt;";
        } else if (static_cast<unsigned char>(c) >= ' ') {
            safe += c;
        }
    }
    return safe;
}

// A place; its attributes in decimals and below 180 degrees, as the schema wants them.
void AppendPlace(std::string& out, const char* element, double latitude, double longitude) {
    constexpr double kHalfDigit = 0.5e-8;
    const double turned = TurnedAngle(longitude), east = turned < 180.0 - kHalfDigit ? turned : -180.0;
    out += Printed("<%s lat=\"%.8f\" lon=\"%.8f\">", element, latitude, east);
}

}  // namespace

std::unique_ptr<TableFormat> MakeCsv(const TableLook& look) { return std::make_unique<Csv>(look); }
std::unique_ptr<TableFormat> MakeJsonRows(const TableLook& look) { return std::make_unique<JsonRows>(look); }

void AppendGpxBegin(std::string& out) {
    out +=
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<gpx version=\"1.1\" creator=\"Halyrig " HALYRIG_VERSION
        "\" xmlns=\"http://www.topografix.com/GPX/1/1\" "
        "xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v2\">\n";
}

void AppendGpxMark(std::string& out, const GpxMark& mark) {
    AppendPlace(out, "wpt", mark.latitude, mark.longitude);
    ((out += "<name>") += XmlText(mark.name)) += "</name></wpt>\n";
}

void AppendGpxEnd(std::string& out) { out += "</gpx>\n"; }

const std::vector<ChannelId>& GpxTrack::Channels() {
    static const std::vector<ChannelId> channels = {kLat, kLon, kSog, kCog};
    return channels;
}

// Speed in metres a second and the true course in degrees have their places in an extension that other programs know; GPX itself
// has had none since version 1.0.
void GpxTrack::Append(std::string& out, const TableRow& row) {
    const double latitude = row.values[0], longitude = row.values[1], speed = row.values[2], course = row.values[3];
    const bool isPlace = std::fabs(latitude) <= 90.0 && std::fabs(TurnedAngle(longitude)) <= 180.0;
    if (latitude == kNoValue || longitude == kNoValue || !isPlace) return;
    const std::int64_t ms = ToMillisecond(row.time);
    if (!begun_) {
        ((out += "<trk><name>") += XmlText(name_)) += "</name>\n<trkseg>\n";
    } else if (ms != last_ + step_) {
        out += "</trkseg>\n<trkseg>\n";
    }
    begun_ = true;
    last_ = ms;
    AppendPlace(out, "trkpt", latitude, longitude);
    if (BoardZone::IsDated(row.time)) {
        AppendUtc(out += "<time>", row.time);
        out += "</time>";
    }
    std::string more;
    if (speed != kNoValue) more += Printed("<gpxtpx:speed>%.3f</gpxtpx:speed>", speed * SiUnitOf(kTypeBoatSpeed).factor);
    if (course != kNoValue && row.variation != kNoValue)
        more += Printed("<gpxtpx:course>%.2f</gpxtpx:course>", WrappedBearing(course + row.variation));
    if (!more.empty()) {
        out += "<extensions><gpxtpx:TrackPointExtension>" + more + "</gpxtpx:TrackPointExtension></extensions>";
    }
    out += "</trkpt>\n";
}

void GpxTrack::End(std::string& out) {
    if (begun_) out += "</trkseg>\n</trk>\n";
}

}  // namespace twr
