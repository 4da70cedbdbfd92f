// SPDX-License-Identifier: MIT
// The mapping line by line: what is passed over, and what has no effect.
#include <algorithm>

#include "base/wide_text.h"
#include "core/record_access.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/check/check_setup.h"
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
    const auto add = [&](const char* flaw, Advice says) {
        setup.Add({.weight = Weight::kMapping, .path = look.path, .flaw = flaw, .says = std::move(says)});
    };
    if (!look.exists) return setup.Add(Weight::kMapping, look.path, 0, Fault(Reason::kNoMapping, {Harmless(look.path)}));
    // Without Deckman's list no line can name a variable of it, and that is no fault of the line.
    const bool listed = !setup.now.Variables().rows.empty();
    const Weight weight = listed && vars.empty() ? Weight::kMapping : Weight::kLine;
    std::size_t told = 0;
    for (const Finding& finding : look.faults) {
        if (!listed && finding.flaw == Flaw::kNoSuchVariable) continue;
        setup.Add(weight, finding);
        ++told;
    }
    if (told == 0 && vars.empty() && dropped == 0 && remotes.empty())
        add("nothing-mapped", {"it can't be read or maps nothing", "'halyrigctl map suggest' shows what to map"});
}

class Lines {
public:
    explicit Lines(const CheckedSetup& setup)
        : setup_(setup), record_(*setup.core.View()), look_(setup.now.TheMapping()), mapping_(look_.mapping) {}

    void CheckVars() const {
        for (const MappingVar& row : mapping_.varRows) {
            CheckChannel(row);
            const auto before = std::ranges::find(mapping_.varRows, row.channel, &MappingVar::channel);
            if (before->line < row.line) {
                Add(row.line, "channel-twice",
                    {"line " + Digits(before->line) + " feeds " + Name(row.channel) + " too, and values get lost",
                     "give each channel one line"});
            }
        }
    }

    void CheckRemotes() const {
        for (const MappingRemote& row : mapping_.remoteRows) {
            if (row.remote == 0) Add(row.line, "no-such-remote", {"there is no remote 0", "they count from 1"});
            const auto before = std::ranges::find(mapping_.remoteRows, row.remote, &MappingRemote::remote);
            if (before->line < row.line) {
                Add(row.line, "remote-twice",
                    {"line " + Digits(before->line) + " shows on remote " + Digits(row.remote) + " too",
                     "give each remote one line"});
            }
        }
    }

private:
    void CheckChannel(const MappingVar& row) const {
        const auto channel = static_cast<ChannelId>(row.channel);
        if (channel == kTime) {
            Add(row.line, "time-channel", {"the Time channel follows the clock, so the line has no effect", "leave it out"});
        } else if (IsAlternating(channel)) {
            Add(row.line, "alternating-channel",
                {Name(row.channel) + " stands for other channels, so the line has no effect", "feed those"});
        } else if (!EntryOf(record_, channel, static_cast<BoatSlot>(row.boat))) {
            setup_.Add(Weight::kLine, look_.path, row.line, Fault(Reason::kNoPlace, {Digits(row.boat), Name(row.channel)}));
        } else if (FollowsPositionSource(channel) && !PositionFromDeckman(record_)) {
            setup_.Add(Weight::kLine, look_.path, row.line,
                       PositionFault(Name(row.channel) + " is", Load(record_.sysInt[kIntPositionSource])));
        }
    }

    std::string Name(std::int32_t channel) const { return ChannelInWords(setup_.core, static_cast<ChannelId>(channel)); }
    void Add(std::size_t line, const char* flaw, Advice says) const {
        setup_.Add({.weight = Weight::kLine, .path = look_.path, .line = line, .flaw = flaw, .says = std::move(says)});
    }

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
