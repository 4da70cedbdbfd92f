#include <algorithm>
#include <cstdio>
#include <string>

#include "core/channel_catalogue.h"
#include "halyrigctl/channel_names.h"
#include "halyrigctl/commands.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

// d: a damping period can be set, l: logged by default, g: from the GPS, s: a sensor.
std::string Flags(const ChannelInfo& info) {
    std::string flags;
    if (info.dampable) flags += 'd';
    if (info.logDefault) flags += 'l';
    if (info.fromGps) flags += 'g';
    if (info.sensor) flags += 's';
    return flags;
}

template <class... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    char line[256];
    std::snprintf(line, sizeof line, format, arguments...);
    return line;
}

std::string OrDash(bool told, int number) { return told ? std::to_string(number) : "-"; }

constexpr const char* kTextRow = "%4s  %-12s %-30s %4s %6s %6s %6s %5s %6s  %s\n";

// For people: a dash where there is nothing to tell.
std::string TextRow(const ChannelInfo& info) {
    const bool ranged = info.min != info.max;
    return Formatted(kTextRow, std::to_string(info.id).c_str(), ToUtf8(CatalogueName(info.id)).c_str(),
                     ToUtf8(info.longName).c_str(), std::to_string(info.type).c_str(), OrDash(ranged, info.min).c_str(),
                     OrDash(ranged, info.max).c_str(), OrDash(info.staleSeconds != 0, info.staleSeconds).c_str(),
                     OrDash(info.prec != 255, info.prec).c_str(),
                     OrDash(info.shortIndex < kShortChannelCount, info.shortIndex).c_str(), Flags(info).c_str());
}

// For programs. Names hold no character that a format would have to escape: no quote, backslash, tab or control character.
std::string DataRow(const ChannelInfo& info, TableForm form) {
    const char* const format = form == TableForm::kTsv
                                   ? "%d\t%s\t%s\t%d\t%d\t%d\t%d\t%d\t%d\t%s\n"
                                   : R"(  {"id": %d, "name": "%s", "longName": "%s", "type": %d, "min": %d, "max": %d, )"
                                     R"("staleSeconds": %d, "prec": %d, "shortIndex": %d, "flags": "%s"})";
    return Formatted(format, info.id, ToUtf8(info.name).c_str(), ToUtf8(info.longName).c_str(), info.type, info.min, info.max,
                     info.staleSeconds, info.prec, info.shortIndex, Flags(info).c_str());
}

std::string Heading(TableForm form) {
    switch (form) {
        case TableForm::kTsv:
            return "id\tname\tlongName\ttype\tmin\tmax\tstaleSeconds\tprec\tshortIndex\tflags\n";
        case TableForm::kJson:
            return "[\n";
        default:
            return Formatted(kTextRow, "id", "name", "long name", "type", "min", "max", "stale", "prec", "short", "flags");
    }
}

}  // namespace

Status ListChannels(Console& console, TableForm form) {
    std::string table = Heading(form);
    for (const ChannelInfo& info : ChannelCatalogue()) {
        table += form == TableForm::kText ? TextRow(info) : DataRow(info, form);
        if (form == TableForm::kJson) table += info.id + 1u < kChannelCount ? ",\n" : "\n]\n";
    }
    return Print(console, table);
}

}  // namespace twr
