// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "core/record_access.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr std::uint16_t kNoFixedPrec = 255;

// A number that is none of these, which only channels.xml can give, counts as a plain number.
const char* TypeWord(std::int16_t type) {
    switch (type) {
        case kTypeDateTime:
            return "date and time";
        case kTypeDuration:
            return "duration";
        case kTypeDepth:
            return "depth";
        case kTypeDistance:
            return "distance";
        case kTypeShortDistance:
            return "short distance";
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
        case kTypeSail:
            return "sail";
        case kTypeBoatSpeed:
            return "boat speed";
        case kTypeWindAngle:
            return "wind angle";
        case kTypeTemperature:
            return "temperature";
        case kTypeBarometer:
            return "barometer";
        case kTypeVolts:
            return "volts";
        case kTypeMetres:
            return "metres";
        case kTypeLength:
            return "length";
        case kTypeTurnRate:
            return "rate of turn";
        case kTypeWindSpeed:
            return "wind speed";
        case kTypeCurrent:
            return "current";
        case kTypePressure:
            return "pressure";
        default:
            return "plain number";
    }
}

// What the record has in force for a channel.
struct LiveChannel {
    ChannelId id;
    std::u16string userName, userShortName;  // empty if the user has given none
    std::int16_t type;
    std::uint16_t prec, damp;
    bool log, published, blocked;
    bool held;  // its new values are refused now
};

LiveChannel LiveChannelOf(const CCore& core, ChannelId id) {
    const CoreRecord& record = *core.View();
    const ChannelRow& row = record.channels[id];
    const bool holding = Load(record.sysFlag[kFlagHoldActive]) != 0;
    return {.id = id,
            .userName = FieldText(row.userName),
            .userShortName = FieldText(row.userShortName),
            .type = core.ChannelTypeOf(id),
            .prec = Load(row.prec),
            .damp = Load(row.damp),
            .log = Load(row.log) != 0,
            .published = Load(row.published) != 0,
            .blocked = Load(row.blocked) != 0,
            .held = holding && Load(row.held) != 0};
}

constexpr const char* kTextRow = "%4s  %-12s %-17s %5s %5s  %-4s %-9s %-7s %-4s  %s\n";

const char* YesOrDash(bool yes) { return yes ? "yes" : "-"; }

std::string NumberOrDash(bool told, int number) { return told ? std::to_string(number) : "-"; }

// The user's names, the short one where it is another.
std::string UserNames(const LiveChannel& channel) {
    if (channel.userName.empty() && channel.userShortName.empty()) return "-";
    if (channel.userShortName.empty() || channel.userName.starts_with(channel.userShortName)) return Harmless(channel.userName);
    return Harmless(channel.userName) + " (" + Harmless(channel.userShortName) + ")";
}

std::string TextRow(const LiveChannel& channel) {
    return Printed(kTextRow, std::to_string(channel.id).c_str(), ToUtf8(CatalogueName(channel.id)).c_str(),
                   Printed("%2d %s", channel.type, TypeWord(channel.type)).c_str(),
                   NumberOrDash(channel.prec != kNoFixedPrec, channel.prec).c_str(),
                   NumberOrDash(channel.damp != 0, channel.damp).c_str(), YesOrDash(channel.log), YesOrDash(channel.published),
                   YesOrDash(channel.blocked), YesOrDash(channel.held), UserNames(channel).c_str());
}

std::string TsvRow(const LiveChannel& channel) {
    return Printed("%u\t%s\t%s\t%s\t%d\t%s\t%d\t%d\t%d\t%d\t%d\t%d\n", channel.id,
                   ToUtf8(ChannelCatalogue()[channel.id].name).c_str(), Harmless(channel.userName).c_str(),
                   Harmless(channel.userShortName).c_str(), channel.type, TypeWord(channel.type), channel.prec, channel.damp,
                   channel.log, channel.published, channel.blocked, channel.held);
}

Json JsonChannel(const LiveChannel& channel) {
    return {{"id", channel.id},
            {"name", TextOrNull(ChannelCatalogue()[channel.id].name)},
            {"userName", TextOrNull(channel.userName)},
            {"userShortName", TextOrNull(channel.userShortName)},
            {"type", channel.type},
            {"typeWord", TypeWord(channel.type)},
            {"prec", Told(channel.prec != kNoFixedPrec, channel.prec)},
            {"damp", channel.damp},
            {"log", channel.log},
            {"published", channel.published},
            {"blocked", channel.blocked},
            {"held", channel.held}};
}

std::string Table(const std::vector<LiveChannel>& channels, TableForm form) {
    if (form == TableForm::kJson) {
        std::vector<Json> rows(channels.size());
        std::ranges::transform(channels, rows.begin(), JsonChannel);
        return JsonTable(rows);
    }
    const bool tsv = form == TableForm::kTsv;
    std::string table =
        tsv ? "id\tname\tuserName\tuserShortName\ttype\ttypeWord\tprec\tdamp\tlog\tpublished\tblocked\theld\n"
            : Printed(kTextRow, "id", "name", "type", "prec", "damp", "log", "published", "blocked", "held", "your name");
    for (const LiveChannel& channel : channels) table += tsv ? TsvRow(channel) : TextRow(channel);
    return table;
}

}  // namespace

Status ListLiveChannels(System& system, TableForm form) {
    Guest guest(system);
    if (!guest) return kFailed;
    std::vector<LiveChannel> channels;
    for (ChannelId id = 0; id < kChannelCount; ++id) channels.push_back(LiveChannelOf(guest.Core(), id));
    guest.Leave();
    return Print(system.GetConsole(), Table(channels, form));
}

}  // namespace twr
