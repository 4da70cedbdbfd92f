// SPDX-License-Identifier: MIT
// The mapping line by line: what is passed over, and what has no effect.
#include <algorithm>

#include "base/wide_text.h"
#include "core/record_access.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/check/check_setup.h"
#include "halyrigctl/setup/channel_match.h"
#include "halyrigctl/setup/value_chain.h"

namespace twr {
namespace {

template <class Number>
std::string Digits(Number number) {
    return std::to_string(number);
}

// The fault for which a line is not used; another may only cost it an attribute.
bool DropsVar(const Finding& finding) {
    constexpr Flaw kFlaws[] = {Flaw::kVariableMissing, Flaw::kNoSuchVariable, Flaw::kChannelMissing, Flaw::kNoSuchChannel,
                               Flaw::kNoSuchBoat};
    return std::ranges::find(kFlaws, finding.flaw) != std::end(kFlaws) && EqualsIgnoringCase(finding.of.substr(0, 3), u"var");
}

void CheckFile(const CheckedSetup& setup) {
    const MappingLook& look = setup.now.TheMapping();
    const auto& [vars, remotes] = look.mapping;
    const auto dropped = static_cast<std::size_t>(std::ranges::count_if(look.faults, DropsVar));
    setup.report.mapping = {look.path, look.exists, vars.size() + dropped, vars.size(), remotes.size()};
    if (look.fault)
        setup.Add(vars.empty() ? Weight::kMapping : Weight::kLine, look.fault.reason == Reason::kNoMapping ? look.path : u"", 0,
                  look.fault);
    if (!look.exists) return;
    // What it costs that Deckman's list is cut short, or that there is none, is told of the list.
    const bool listed = !setup.now.Variables().rows.empty() && !setup.now.ListCutShort();
    const Weight weight = listed && vars.empty() ? Weight::kMapping : Weight::kLine;
    std::size_t told = look.fault ? 1 : 0;
    for (const Finding& finding : look.faults) {
        if ((!listed && finding.flaw == Flaw::kNoSuchVariable) || (look.fault && EndsReading(finding.flaw))) continue;
        setup.Add(weight, finding);
        ++told;
    }
    if (told == 0 && vars.empty() && dropped == 0 && remotes.empty())
        setup.Add(Weight::kMapping, look.path, 0, Fault(Reason::kNothingMapped));
}

class Lines {
public:
    explicit Lines(const CheckedSetup& setup)
        : setup_(setup), record_(*setup.core.View()), look_(setup.now.TheMapping()), mapping_(look_.mapping) {}

    void CheckVars() const {
        for (const MappingVar& row : mapping_.varRows) {
            CheckChannel(row);
            CheckUnit(row);
            const auto before = std::ranges::find(mapping_.varRows, row.channel, &MappingVar::channel);
            if (&*before != &row) Add(row.line, Fault(Reason::kChannelTwice, {Digits(before->line), Name(row.channel)}));
        }
    }

    void CheckRemotes() const {
        for (const MappingRemote& row : mapping_.remoteRows) {
            if (row.remote == 0) Add(row.line, Fault(Reason::kNoRemoteZero));
            const auto before = std::ranges::find(mapping_.remoteRows, row.remote, &MappingRemote::remote);
            if (&*before != &row) Add(row.line, Fault(Reason::kRemoteTwice, {Digits(before->line), Digits(row.remote)}));
        }
    }

private:
    void CheckChannel(const MappingVar& row) const {
        const auto channel = static_cast<ChannelId>(row.channel);
        if (channel == kTime) {
            Add(row.line, Fault(Reason::kTimeChannel));
        } else if (IsAlternating(channel)) {
            Add(row.line, Fault(Reason::kAlternatingChannel, {Name(row.channel)}));
        } else if (!EntryOf(record_, channel, static_cast<BoatSlot>(row.boat))) {
            Add(row.line, Fault(Reason::kNoPlace, {Digits(row.boat), Name(row.channel)}));
        } else if (FollowsPositionSource(channel) && !PositionFromDeckman(record_)) {
            Add(row.line, PositionFault(Name(row.channel) + " is", Load(record_.sysInt[kIntPositionSource])));
        }
    }

    // What the unit in Deckman's list says against the channel or the boxes. It may be the list that is wrong.
    void CheckUnit(const MappingVar& row) const {
        const auto channel = static_cast<ChannelId>(row.channel);
        const std::string unit = Harmless(row.dfwColumn3), variable = Harmless(row.dfwName);
        if (channel == kTime || IsAlternating(channel)) return;
        if (!UnitFits(row, channel)) {
            Doubt(row.line, Fault(Reason::kUnitDiffers, {variable, Name(row.channel), unit}));
        } else if (const auto box = UnitMeansBox(row, channel); box && *box != BoxFor(channel)) {
            Doubt(row.line,
                  Fault(Reason::kBoxAndUnitDiffer, {variable, unit, channel == kDepth ? "feet" : "degrees true",
                                                    *box ? "off" : "on", channel == kDepth ? "the depth is" : "bearings are"}));
        }
    }
    bool BoxFor(ChannelId channel) const {
        return channel == kDepth ? setup_.now.settings.depthInFeet : setup_.now.settings.degreesTrue;
    }

    std::string Name(std::int32_t channel) const { return ChannelInWords(setup_.core, static_cast<ChannelId>(channel)); }
    void Add(std::size_t line, const Fault& fault) const { setup_.Add(Weight::kLine, look_.path, line, fault); }
    void Doubt(std::size_t line, const Fault& fault) const { setup_.Add(Weight::kNote, look_.path, line, fault); }

    const CheckedSetup& setup_;
    CoreRecord& record_;
    const MappingLook& look_;
    const Mapping& mapping_;
};

}  // namespace

void CheckMapping(const CheckedSetup& setup) {
    CheckFile(setup);
    const Lines lines(setup);
    lines.CheckVars();
    lines.CheckRemotes();
}

}  // namespace twr
