#include "halyrigctl/setup/source_links.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/setup/finding_words.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr double kTickSeconds = 0.1, kSurelyWaits = 1.0;
constexpr const char* kOwnLibrary = "install Deckman's own library there";
constexpr const char* kMapVariation = "map Deckman's variation to channel 93, or untick the box for degrees true";

template <class Number>
std::string Digits(Number number) {
    return std::to_string(number);
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
          reading_(now_.bridge ? now_.bridge->readings[channel_] : kNoReading) {}

    void AddAll() {
        const bool mapped = line_ || reading_ != kNoReading;
        const bool byFunction = !mapped && (channel_ == kLat || channel_ == kLon) && subject_.boat == 0;
        if (FollowsPositionSource(channel_) && !AddPosition()) return;
        if (!mapped && !byFunction && subject_.age) {
            links_.Hold("mapping", "no line feeds it; another program of the suite does, or did");
            return;
        }
        AddBridge();
        AddLibrary(byFunction);
        if (byFunction) return;
        AddVariables();
        AddMapping();
        if (reading_ != kNoReading) AddReading();
    }

private:
    // False if Deckman is not the source.
    bool AddPosition() {
        const std::string source = "(Sys_i6) is " + Digits(Load(subject_.record.sysInt[kIntPositionSource]));
        if (PositionFromDeckman(subject_.record)) {
            links_.Hold("position", "comes from Deckman, since the position source " + source);
            return true;
        }
        if (subject_.age) {
            links_.Hold("position", "comes from another program, since the position source " + source + ", and Deckman's is 3");
            return false;
        }
        if (PositionFromDeckman(now_.Renewed())) {
            links_.Break("position", {"the record was made before the position source (Sys_i6) became Deckman's, 3", kRestartAll});
        } else {
            links_.Break("position",
                         {"position, COG and SOG are taken from Deckman only while the position source (Sys_i6) is 3, and it" +
                              source.substr(source.find(" is ")),
                          std::string("set it in the registry, then ") + kRestartAll});
        }
        return true;
    }

    void AddBridge() {
        const double waited =
            now_.bridge && now_.bridge->waitsSince ? std::fabs(now_.now - *now_.bridge->waitsSince) * kSecondsPerDay : 0.0;
        Advice fault;
        if (!now_.bridge && now_.name.state == NameLook::kTaken) {
            return links_.Hold("bridge", now_.WithoutBridge().Line());
        } else if (!now_.bridge) {
            fault = now_.WithoutBridge();
        } else if (waited > kSurelyWaits || (now_.standsStill && now_.bridge->waitsSince)) {
            fault = {"the bridge stands still: Deckman's library, which it has called, has not returned for " +
                         Printed("%.1f s", waited),
                     "if it goes on, see whether Deckman itself hangs, end both and start them again"};
        } else if (now_.standsStill) {
            fault = {"the bridge stands still: it is stopped, or another program holds it up", "end it and start it again"};
        }
        const bool slow = now_.bridge && now_.bridge->passSeconds > kTickSeconds;
        links_.Judge("bridge", fault,
                     slow ? "it runs, held up by Deckman's library, which takes " + Printed("%.1f s", now_.bridge->passSeconds) +
                                " for each tick"
                          : "it runs");
    }

    void AddLibrary(bool byFunction) {
        const std::string library = "the library in " + Harmless(now_.settings.dfwFolder);
        Advice fault;
        if (!now_.bridge) {
            fault = now_.Library().fault;
        } else if (!now_.bridge->library.loaded) {
            fault = now_.Library().fault;
            fault = fault ? Advice{"the bridge could not load Deckman's library: " + fault.what, fault.todo}
                          : Advice{"the bridge could not load Deckman's library when it looked, and could now", kReadAgain};
        } else if (byFunction && now_.Library().Lacks("Usr_GetPosition")) {
            fault = {library + " has no function Usr_GetPosition, which gives the position", kOwnLibrary};
        } else if (!byFunction && !now_.bridge->library.reads) {
            fault = {library + " has no function Usr_Read, so it is not Deckman's", kOwnLibrary};
        }
        links_.Judge("library", fault, library);
    }

    void AddVariables() {
        const std::size_t count =
            now_.bridge ? static_cast<std::size_t>(std::max(0, now_.bridge->mapping.variables)) : now_.Variables().rows.size();
        Advice fault;
        if (count == 0) {
            fault = {"there is no file of variables (Data/J_vars06.d) with a variable in the Dfw folder " +
                         Harmless(now_.settings.dfwFolder),
                     "choose Deckman's own folder in the dialog"};
        }
        links_.Judge("variables", fault, Digits(count) + " in Deckman's list");
    }

    void AddMapping() {
        const MappingLook& look = now_.TheMapping();
        if (!line_) {
            links_.Judge("mapping", reading_ == kNoReading ? Unmapped(look) : Advice{},
                         "a line that is no longer in the file, until the bridge reads that again");
            return;
        }
        const std::string says = PlaceInWords(look.path, line_->line) + "Deckman's variable " + Harmless(line_->dfwName) + " (" +
                                 Digits(line_->dfwId) + ")";
        const bool unread = now_.bridge && now_.bridge->library.reads && reading_ == kNoReading;
        links_.Judge("mapping", unread ? Advice{says + ", which the bridge has not read yet", kReadAgain} : Advice{}, says);
    }

    Advice Unmapped(const MappingLook& look) {
        if (const Finding* own = look.FaultOf(channel_, subject_.boat)) {
            const Advice advice = AdviceFor(*own);
            return {PlaceInWords(look.path, own->line) + advice.what, advice.todo + "; then " + kReadAgain};
        }
        const std::string path = Harmless(look.path);
        const std::u16string renewed = FieldText(now_.Renewed().dataFolder);
        if (!FieldTextIs(subject_.record.dataFolder, renewed)) {
            return {"the record was made before the data folder became " + Harmless(renewed) + ", and no line of the mapping (" +
                        path + ") feeds it",
                    kRestartAll};
        }
        if (!look.exists) return {"there is no mapping (" + path + ")", ToMap()};
        std::string what = "no line of the mapping (" + path + ") feeds it";
        if (!look.faults.empty()) {
            const std::size_t more = look.faults.size() - 1;
            what += ", but line " + Digits(look.faults.front().line) + ": " + AdviceFor(look.faults.front()).what;
            if (more > 0) what += ", and " + Digits(more) + (more == 1 ? " more fault" : " more faults");
        }
        return {what, ToMap()};
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
        const auto same = std::ranges::find_if(variables, [&](const DeckmanVariable& variable) {
            return EqualsIgnoringCase(variable.dfwName, CatalogueName(channel_));
        });
        return same == variables.end() ? "'halyrigctl map suggest' shows what Deckman has"
                                       : "'halyrigctl map add " + Harmless(same->dfwName) + " " + Digits(channel_) + "' adds one";
    }

    void AddReading() {
        const std::string gives = Printed("Deckman gives %.7g", static_cast<double>(reading_));  // as precise as the reading
        const bool inFeet = channel_ == kDepth && now_.settings.depthInFeet;
        const std::string forIt = line_ ? " for its variable " + Harmless(line_->dfwName) : std::string();
        Advice fault;
        if (!std::isfinite(reading_)) {
            const ChannelInfo& info = ChannelCatalogue()[channel_];
            fault = Unusable("Deckman gives ", reading_, forIt, info.min != info.max,
                             "see in Deckman to the sensor, or how it is computed");
        } else if (static_cast<double>(reading_) == kNoValue) {
            const bool ever = Load(subject_.record.channels[channel_].published) != 0;
            fault = {(ever ? "Deckman gives no value now" : "Deckman has never given a value") + forIt,
                     inFeet ? "a depth of 9987 m on the displays is Deckman's mark for none, turned from feet into metres"
                            : "see in Deckman whether the sensor is there"};
        }
        links_.Judge("Deckman", fault, gives);
        if (!fault) AddBoxAndRange(gives);
    }

    void AddBoxAndRange(const std::string& gives) {
        const ReadingUnits units{now_.settings.degreesTrue, now_.settings.depthInFeet, OwnVariation(subject_.record)};
        double value = InstrumentValue(channel_, reading_, units);
        Advice fault;
        if (IsInstrumentBearing(channel_) && units.degreesTrue && units.variation == kNoValue) {
            fault = {
                "Deckman's bearings are taken as true, and there is no variation (MagVar, channel 93) to make this one magnetic",
                kMapVariation};
        }
        links_.Judge("box", fault, Conversion());
        if (fault) return;
        subject_.core.NormaliseValue(channel_, value);
        const ChannelInfo& info = ChannelCatalogue()[channel_];
        const std::string range = Digits(info.min) + " to " + Digits(info.max);
        if (value == kNoValue)
            fault = {gives + ", outside the channel's range of " + range, "see to the sensor and to Deckman's calibration"};
        links_.Judge("range", fault, info.min == info.max ? "any number" : range);
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
    const MappingVar* const line_;  // of the file as it is now
    const float reading_;           // the bridge's last one
};

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
    const double time = Load(*entry.time);
    if (time == 0.0) return;
    age = std::fabs(now - time) * kSecondsPerDay;
    stale = IsStale(time, now, limit);
}

void AddSourceLinks(Links& links, const Subject& subject, Circumstances& circumstances) {
    Source(links, subject, circumstances).AddAll();
}

Advice Unusable(const std::string& giver, double value, const std::string& forWhat, bool ranged, const char* todo) {
    const bool isNumber = !std::isnan(value);
    const char* shown = !isNumber ? "NAN" : ranged ? "-0" : "INF";
    return {giver + (isNumber ? "an infinite value" : "what is not a number (NaN)") + forWhat + ": a display shows " + shown +
                ", and streams leave it out",
            todo};
}

std::string PlaceInWords(std::u16string_view path, std::size_t line) { return Harmless(path) + ":" + Digits(line) + ": "; }

std::string ChannelInWords(CCore& core, ChannelId channel) {
    return Harmless(NameForPeople(core, channel)) + " (" + Digits(channel) + ")";
}

}  // namespace twr
