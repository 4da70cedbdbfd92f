// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/value_chain.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "core/units.h"
#include "deckman/deckman_library.h"
#include "deckman/instrument_value.h"
#include "deckman/remote_text.h"
#include "halyrigctl/setup/channel_match.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr double kTickSeconds = 0.1;

template <class Number>
std::string Digits(Number number) {
    return std::to_string(number);
}

// What NaN or an infinity does. The suite refuses an infinity if the channel has a range, but never NaN.
std::string Unusable(double value, const std::string& forWhat, bool ranged) {
    const bool isNumber = !std::isnan(value);
    const char* shown = !isNumber ? "NAN" : ranged ? "-0" : "INF";
    return (isNumber ? "an infinite value" : "what is not a number (NaN)") + forWhat + ": a display shows " + shown +
           ", and streams leave it out";
}

// A channel that the core computes from another one, while a flag asks for it.
struct DerivedChannel {
    ChannelId channel, from;
    std::size_t flag;
};
constexpr DerivedChannel kDerived[] = {
    {kRot, kHdg, kFlagDeriveRot}, {kHeelRate, kHeel, kFlagDeriveHeelTrimRate}, {kTrimRate, kTrim, kFlagDeriveHeelTrimRate}};

class Source {
public:
    Source(Links& links, const Subject& subject, Circumstances& circumstances)
        : links_(links),
          subject_(subject),
          now_(circumstances),
          channel_(subject.channel),
          line_(now_.TheMapping().LineOf(channel_, subject.boat)),
          inForce_(now_.bridge ? now_.bridge->LineOf(static_cast<std::int32_t>(channel_), static_cast<std::int32_t>(subject.boat))
                               : nullptr) {}

    void AddAll() {
        const MappingLook& look = now_.TheMapping();
        const bool mapped = line_ || inForce_ || look.Means(channel_, subject_.boat);
        const bool byFunction = !mapped && (channel_ == kLat || channel_ == kLon) && subject_.boat == 0;
        if (FollowsPositionSource(channel_) && !AddPosition()) return;
        const bool hidden = look.fault && look.fault.reason != Reason::kNoMapping;  // lines that may be meant to feed it
        const bool fresh = !subject_.stale && subject_.stored != kNoValue;
        if (!mapped && !byFunction && subject_.age && (fresh || !hidden)) {
            links_.Hold(LinkName::kMapping, channel_ == kTime ? "it follows the clock of this computer"
                                                              : "no line feeds it; another program of the suite does, or did");
            return;
        }
        AddBridge();
        AddLibrary(byFunction);
        if (byFunction) return;
        AddVariables();
        AddMapping(look);
        if (inForce_ && inForce_->reading) AddReading(*inForce_->reading);
    }

private:
    // False if Deckman is not the source.
    bool AddPosition() {
        const std::string source = "(Sys_i6) is " + Digits(Load(subject_.record.sysInt[kIntPositionSource]));
        if (PositionFromDeckman(subject_.record)) {
            links_.Hold(LinkName::kPosition, "comes from Deckman, since the position source " + source);
            return true;
        }
        if (subject_.age) {
            links_.Hold(LinkName::kPosition,
                        "comes from another program, since the position source " + source + ", and Deckman's is 3");
            return false;
        }
        links_.Judge(LinkName::kPosition,
                     PositionFromDeckman(now_.Renewed())
                         ? Fault(Reason::kPositionOld)
                         : PositionFault("position, COG and SOG are", Load(subject_.record.sysInt[kIntPositionSource])),
                     {});
        return true;
    }

    void AddBridge() {
        if (!now_.bridge && now_.name.state == NameLook::kTaken) return links_.Hold(LinkName::kBridge, now_.WithoutBridge().Line());
        const Fault fault = now_.bridge ? now_.Standstill() : now_.WithoutBridge();
        const bool slow = now_.bridge && now_.bridge->passSeconds > kTickSeconds;
        links_.Judge(LinkName::kBridge, fault,
                     slow ? "it runs, held up by Deckman's library, which takes " + Printed("%.1f s", now_.bridge->passSeconds) +
                                " for each tick"
                          : "it runs");
    }

    void AddLibrary(bool byFunction) {
        const std::string folder = Harmless(now_.settings.dfwFolder);
        Fault fault;
        if (!now_.bridge) {
            fault = now_.Library().fault;
        } else if (!now_.bridge->library.loaded) {
            fault = now_.Library().fault;
            if (fault) {
                fault.what = "the bridge could not load Deckman's library: " + fault.what;
            } else {
                fault = Fault(Reason::kLoadsNow);
            }
        } else if (byFunction && now_.Library().Lacks(kUsrGetPosition)) {
            fault = Fault(Reason::kFunctionMissing, {folder, kUsrGetPosition, ", which gives the position"});
        } else if (!byFunction && !now_.bridge->library.reads) {
            fault = Fault(Reason::kFunctionMissing, {folder, kUsrRead, ", so it is not Deckman's"});
        }
        links_.Judge(LinkName::kLibrary, fault, "the library in " + folder);
    }

    void AddVariables() {
        const std::size_t listed = now_.Variables().rows.size();
        const std::size_t count = now_.bridge ? static_cast<std::size_t>(std::max(0, now_.bridge->mapping.variables)) : listed;
        Fault fault;
        if (count == 0) fault = listed > 0 ? Fault(Reason::kListNotYetRead) : now_.NoVariables();
        links_.Judge(LinkName::kVariables, fault, Digits(count) + " in Deckman's list");
    }

    void AddMapping(const MappingLook& look) {
        if (!line_) {
            links_.Judge(LinkName::kMapping, inForce_ ? Fault() : Unmapped(look),
                         "a line that is no longer in the file, until the bridge reads that again");
            return;
        }
        const std::string says = PlaceInWords(look.path, line_->line) + "Deckman's variable " + Harmless(line_->dfwName) + " (" +
                                 Digits(line_->dfwId) + ")";
        const bool allSeen = now_.bridge && now_.bridge->lines.size() >= static_cast<std::size_t>(now_.bridge->mapping.varRows);
        const bool unread = allSeen && (!inForce_ || inForce_->variable != line_->dfwId);
        links_.Judge(LinkName::kMapping, unread ? Fault(Reason::kNotYetRead, {says}) : Fault(), says);
    }

    Fault Unmapped(const MappingLook& look) {
        if (const Finding* own = look.FaultOf(channel_, subject_.boat)) {
            if (Fault cut = now_.ListCutShort(); cut && own->flaw == Flaw::kNoSuchVariable) return cut;
            const Advice advice = AdviceFor(*own);
            return Fault(Reason::kLineFlawed, {PlaceInWords(look.path, own->line) + advice.what},
                         advice.todo + "; then " + kReadAgain);
        }
        const std::string path = Harmless(look.path);
        const std::u16string renewed = FieldText(now_.Renewed().dataFolder);
        if (!FieldTextIs(subject_.record.dataFolder, renewed)) return Fault(Reason::kDataFolderOld, {Harmless(renewed), path});
        if (look.fault) return look.fault;
        std::string but;
        if (const MappingVar* other = LineOfAnotherBoat(look)) {
            const std::string boat = Digits(other->boat);
            return Fault(Reason::kNotMapped, {path, ", but line " + Digits(other->line) + " feeds it for boat " + boat},
                         "ask with --boat " + boat + "; or, since a channel can have one line alone, 'halyrigctl map remove " +
                             Digits(channel_) + " --boat " + boat + "' first, then " + ToMap());
        }
        if (!look.faults.empty()) {
            const std::size_t more = look.faults.size() - 1;
            but = ", but line " + Digits(look.faults.front().line) + ": " + AdviceFor(look.faults.front()).what;
            if (more > 0) but += ", and " + Digits(more) + (more == 1 ? " more fault" : " more faults");
        }
        return Fault(Reason::kNotMapped, {path, but}, ToMap());
    }

    const MappingVar* LineOfAnotherBoat(const MappingLook& look) const {
        const auto found = std::ranges::find(look.mapping.varRows, static_cast<std::int32_t>(channel_), &MappingVar::channel);
        return found == look.mapping.varRows.end() ? nullptr : &*found;
    }

    // What to do for a channel that nothing feeds.
    std::string ToMap() {
        const auto derived = std::ranges::find(kDerived, channel_, &DerivedChannel::channel);
        if (derived != std::end(kDerived)) {
            const std::string from = ChannelInWords(subject_.core, derived->from);
            return Load(subject_.record.sysFlag[derived->flag]) != 0
                       ? "it is computed from " + from + ": see there"
                       : "map it, or set Sys_b" + Digits(derived->flag) + " to 1 in the registry to have it computed from " + from;
        }
        const auto& variables = now_.Variables().rows;
        const auto fits =
            std::ranges::find_if(variables, [&](const DeckmanVariable& variable) { return SurelyMeans(variable, channel_); });
        if (fits == variables.end()) return "'halyrigctl map suggest' shows what Deckman has";
        return "'halyrigctl map add " + TypedVariable(*fits) + " " + Digits(channel_) +
               (subject_.boat > 0 ? " --boat " + Digits(subject_.boat) : "") + "' adds one; then " + kReadAgain;
    }

    void AddReading(float given) {
        const std::string reading = Printed("%.7g", static_cast<double>(given));  // as precise as it is
        const std::string forIt = line_ ? " for its variable " + Harmless(line_->dfwName) : std::string();
        Fault fault;
        if (!std::isfinite(given)) {
            const ChannelInfo& info = ChannelCatalogue()[channel_];
            fault = Fault(Reason::kReadingUnusable, {Unusable(given, forIt, info.min != info.max)});
        } else if (static_cast<double>(given) == kNoValue) {
            const bool ever = Load(subject_.record.channels[channel_].published) != 0;
            const bool inFeet = channel_ == kDepth && now_.settings.depthInFeet;
            fault = Fault(ever ? Reason::kReadingNone : Reason::kReadingNever, {forIt});
            if (inFeet) fault.todo += "; a depth of 9987 m on a display is Deckman's mark for none, turned from feet into metres";
        }
        links_.Judge(LinkName::kDeckman, fault, "Deckman gives " + reading);
        if (!fault) AddBoxAndRange(given, reading);
    }

    void AddBoxAndRange(float given, const std::string& reading) {
        const ReadingUnits units{now_.settings.degreesTrue, now_.settings.depthInFeet, OwnVariation(subject_.record)};
        double value = InstrumentValue(channel_, given, units);
        const bool noVariation = IsInstrumentBearing(channel_) && units.degreesTrue && units.variation == kNoValue;
        links_.Judge(LinkName::kBox, noVariation ? Fault(Reason::kNoVariationForBox, {"this one"}) : Fault(), Conversion());
        if (noVariation) return;
        subject_.core.NormaliseValue(channel_, value);
        const ChannelInfo& info = ChannelCatalogue()[channel_];
        const std::string range = Digits(info.min) + " to " + Digits(info.max);
        links_.Judge(LinkName::kRange, value == kNoValue ? Fault(Reason::kOutsideRange, {reading, range}) : Fault(),
                     info.min == info.max ? "any number" : range);
    }

    // What the bridge does to a reading, by the boxes.
    std::string Conversion() const {
        if (channel_ == kDepth && now_.settings.depthInFeet) return "from feet into metres, by the box for feet";
        if (channel_ == kHeel || channel_ == kLeeway) return "with the other sign";
        if (IsInstrumentBearing(channel_))
            return now_.settings.degreesTrue ? "from true to magnetic, by the box for degrees true" : "taken as magnetic";
        return "as it comes";
    }

    Links& links_;
    const Subject& subject_;
    Circumstances& now_;
    const ChannelId channel_;
    const MappingVar* const line_;     // of the file as it is now
    const MappedLine* const inForce_;  // the bridge's
};

bool ShowsMagnetic(const CoreRecord& record) { return Load(record.sysFlag[kFlagMagnetic]) != 0; }

bool SameAlternates(const CoreRecord& left, const CoreRecord& right, ChannelId alternating) {
    const std::size_t row = alternating - kAlt0;
    return std::ranges::equal(left.alternates[row].slot, right.alternates[row].slot, {}, Load<std::int32_t>, Load<std::int32_t>);
}

// What the suite refuses gets nowhere, whatever its source.
Fault Refusal(const Subject& subject) {
    const CoreRecord& record = subject.record;
    const ChannelRow& row = record.channels[subject.channel];
    if (!subject.entry) return Fault(Reason::kNoPlace, {Digits(subject.boat), "this channel"});
    if (Load(row.blocked) != 0) return Fault(Reason::kBlocked);
    if (Load(record.sysFlag[kFlagHoldActive]) != 0 && Load(row.held) != 0) return Fault(Reason::kHeld);
    return {};
}

// The line of another boat that feeds the same channel as the subject's own, whose values then get lost; nullptr if there is none.
const MappingVar* RivalOf(const Subject& subject, const MappingLook& look) {
    const auto rival = std::ranges::find_if(look.mapping.varRows, [&](const MappingVar& row) {
        return row.channel == static_cast<std::int32_t>(subject.channel) && row.boat != static_cast<std::int32_t>(subject.boat);
    });
    return rival == look.mapping.varRows.end() || !look.LineOf(subject.channel, subject.boat) ? nullptr : &*rival;
}

void AddRecord(Links& links, const Subject& subject, const MappingLook& look) {
    Fault fault;
    if (const MappingVar* rival = RivalOf(subject, look); rival && (!subject.age || subject.stale)) {
        fault = Fault(Reason::kChannelTwice, {Digits(rival->line), ChannelInWords(subject.core, subject.channel)});
    } else if (!subject.age) {
        fault = Fault(Reason::kNothingCame);
    } else if (subject.stored == kNoValue) {
        fault = Fault(Reason::kSourceNone);
    } else if (!std::isfinite(subject.stored)) {
        fault = Fault(Reason::kSourceUnusable, {Unusable(subject.stored, "", false)});
    }
    const std::string age = Printed("%.1f s", subject.age.value_or(0.0)), limit = Digits(subject.limit) + " s";
    links.Judge(LinkName::kRecord, fault, Printed("%.10g", subject.stored) + ", published " + age + " ago");
    const bool notDeckman = FollowsPositionSource(subject.channel) && !PositionFromDeckman(subject.record);
    const std::string hint = notDeckman ? std::string("; Deckman gives it only ") + kWhilePositionSource : "";
    links.Judge(LinkName::kLimit, subject.stale ? Fault(Reason::kStale, {age, limit, hint}) : Fault(),
                subject.limit > 0 ? limit : "never stale");
}

// `shown`: the channel by which it is read, alternating if a chain is longer.
void AddUnit(Links& links, const Subject& subject, ChannelId shown) {
    const CCore& core = subject.core;
    const std::int16_t type = core.ChannelTypeOf(subject.channel);
    const bool magnetic = ShowsMagnetic(subject.record);
    const std::u16string unit(UnitLabel(type, UnitSettingsOf(subject.record)));
    double value = kNoValue;
    core.GetChannel(shown, value, subject.boat, false, magnetic, true);
    const std::u16string text = core.ChannelText(shown, value);
    Fault fault;
    if (type == kTypeDateTime && value != kNoValue && text.empty()) fault = Fault(Reason::kNoZone);
    if (subject.stored != kNoValue && value == kNoValue)
        fault = Fault(type == kTypeBearing && !magnetic ? Reason::kNoVariationForTrue : Reason::kNoSuchUnit);
    links.Judge(LinkName::kShown, fault, Harmless(text + (unit.empty() ? u"" : u" ") + unit));
}

// `undamped`: it has a value, but no damped one.
Fault DisplayFault(const std::string& remote, bool undamped, Circumstances& now) {
    const LibraryLook& library = now.Library();
    if (library.Lacks(kUsrSetData) || library.Lacks(kUsrSetName)) return Fault(Reason::kNoTexts, {kUsrSetData, kUsrSetName});
    return undamped ? Fault(Reason::kNotDamped, {remote}) : Fault();
}

}  // namespace

Subject::Subject(CCore& ofRecord, ChannelId itsChannel, BoatSlot itsBoat, double now)
    : core(ofRecord),
      record(*ofRecord.View()),
      channel(itsChannel),
      boat(itsBoat),
      entry(EntryOf(record, channel, boat)),
      limit(core.StaleSeconds(channel, boat)) {
    if (!entry) return;
    stored = Load(*entry.value);
    if (IsLostDepth(channel, stored)) stored = kNoValue;
    const double time = Load(*entry.time);
    if (time == 0.0) return;
    age = std::fabs(now - time) * kSecondsPerDay;
    stale = IsStale(time, now, limit);
}

Links ValueChain(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    Links links;
    const ChannelId shown = core.ResolveAlternate(channel, true);
    const ChannelId source = core.SourceOf(channel);
    if (source >= kChannelCount) {
        const bool asAtStart = SameAlternates(*core.View(), circumstances.Renewed(), channel);
        Fault damaged = circumstances.AlternatesFault();
        links.Judge(LinkName::kAlternates,
                    !asAtStart ? Fault(Reason::kAlternatesOld)
                    : damaged  ? damaged
                               : Fault(Reason::kStandsForNone, {Harmless(circumstances.ConfigPath(u"alternate.csv"))}),
                    {});
        return links;
    }
    if (source != channel) links.Hold(LinkName::kAlternates, "it stands for " + ChannelInWords(core, source) + " now");
    const Subject subject(core, source, boat, circumstances.now);
    links.Judge(LinkName::kSuite, Refusal(subject), "it takes new values");
    Source(links, subject, circumstances).AddAll();
    AddRecord(links, subject, circumstances.TheMapping());
    AddUnit(links, subject, shown);
    return links;
}

void AddRemoteLinks(Links& links, CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    const MappingLook& look = circumstances.TheMapping();
    for (const MappingRemote& row : look.mapping.remoteRows) {
        const auto mapped = static_cast<ChannelId>(row.channel);
        const ChannelId resolved = core.ResolveAlternate(mapped, true);
        if (row.boat != static_cast<std::int32_t>(boat) || (mapped != channel && resolved != channel)) continue;
        const auto fresh = [&](bool damped) {
            double value = kNoValue;
            core.GetFreshChannel(resolved, value, boat, damped, ShowsMagnetic(*core.View()), kNoValue);
            return value;
        };
        const double value = fresh(row.damp != 0);
        const std::string remote = PlaceInWords(look.path, row.line) + "remote " + Digits(row.remote);
        links.Judge(LinkName::kRemote, DisplayFault(remote, value == kNoValue && fresh(false) != kNoValue, circumstances),
                    remote + " shows " + Harmless(RemoteValueText(core, resolved, value)) + (row.damp != 0 ? ", damped" : ""));
    }
}

std::string ChannelInWords(CCore& core, ChannelId channel, BoatSlot boat) {
    const std::string ofBoat = boat > 0 ? " of boat " + Digits(boat) : "";
    return Harmless(NameForPeople(core, channel)) + " (" + Digits(channel) + ")" + ofBoat;
}

}  // namespace twr
