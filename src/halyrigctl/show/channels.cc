// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/names.h"

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

bool HasRange(const ChannelInfo& info) { return info.min != info.max; }
bool GetsStale(const ChannelInfo& info) { return info.staleSeconds != 0; }
bool HasPrec(const ChannelInfo& info) { return info.prec != 255; }
bool HasShortIndex(const ChannelInfo& info) { return info.shortIndex < kShortChannelCount; }

std::string OrDash(bool told, int number) { return told ? std::to_string(number) : "-"; }

constexpr const char* kChannelRow = "%4s  %-12s %-30s %4s %6s %6s %6s %5s %6s  %s\n";

// For users: a dash where there is no value.
std::string TextRow(const ChannelInfo& info) {
    return Printed(kChannelRow, std::to_string(info.id).c_str(), ToUtf8(CatalogueName(info.id)).c_str(),
                   ToUtf8(info.longName).c_str(), std::to_string(info.type).c_str(), OrDash(HasRange(info), info.min).c_str(),
                   OrDash(HasRange(info), info.max).c_str(), OrDash(GetsStale(info), info.staleSeconds).c_str(),
                   OrDash(HasPrec(info), info.prec).c_str(), OrDash(HasShortIndex(info), info.shortIndex).c_str(),
                   Flags(info).c_str());
}

// The numbers that the suite keeps. No name contains a tab.
std::string TsvRow(const ChannelInfo& info) {
    return Printed("%d\t%s\t%s\t%d\t%d\t%d\t%d\t%d\t%d\t%s\n", info.id, ToUtf8(info.name).c_str(), ToUtf8(info.longName).c_str(),
                   info.type, info.min, info.max, info.staleSeconds, info.prec, info.shortIndex, Flags(info).c_str());
}

Json JsonInfo(const ChannelInfo& info) {
    const std::string flags = Flags(info);
    return {{"id", info.id},
            {"name", TextOrNull(info.name)},
            {"longName", TextOrNull(info.longName)},
            {"type", static_cast<int>(info.type)},
            {"min", Told(HasRange(info), info.min)},
            {"max", Told(HasRange(info), info.max)},
            {"staleSeconds", Told(GetsStale(info), info.staleSeconds)},
            {"prec", Told(HasPrec(info), info.prec)},
            {"shortIndex", Told(HasShortIndex(info), info.shortIndex)},
            {"flags", Told(!flags.empty(), flags)}};
}

std::string TextTable() {
    std::string table = Printed(kChannelRow, "id", "name", "long name", "type", "min", "max", "stale", "prec", "short", "flags");
    for (const ChannelInfo& info : ChannelCatalogue()) table += TextRow(info);
    return table;
}

std::string TsvTable() {
    std::string table = "id\tname\tlongName\ttype\tmin\tmax\tstaleSeconds\tprec\tshortIndex\tflags\n";
    for (const ChannelInfo& info : ChannelCatalogue()) table += TsvRow(info);
    return table;
}

std::string JsonCatalogue() {
    std::vector<Json> rows;
    for (const ChannelInfo& info : ChannelCatalogue()) rows.push_back(JsonInfo(info));
    return JsonTable(rows);
}

}  // namespace

Status ListChannels(Console& console, TableForm form) {
    switch (form) {
        case TableForm::kTsv:
            return Print(console, TsvTable());
        case TableForm::kJson:
            return Print(console, JsonCatalogue());
        default:
            return Print(console, TextTable());
    }
}

}  // namespace twr
