// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/reasons.h"

#include <iterator>
#include <span>

#include "base/channel_ids.h"
#include "status/bridge_status.h"

namespace twr {
namespace {

constexpr std::string_view kLinkWords[] = {"alternates", "suite", "position", "bridge", "library", "variables", "mapping",
                                           "Deckman",    "box",   "range",    "record", "limit",   "shown",     "remote"};
static_assert(std::size(kLinkWords) == static_cast<std::size_t>(LinkName::kRemote) + 1);

// {0}, {1} ... stand for what the place where the fault is seen knows of it.
struct ReasonRow {
    Reason reason;
    LinkName link;
    std::string_view word, what, todo;
};

constexpr const char* kChoose = "choose Deckman's own folder: in the dialog, or by 'halyrigctl choose FOLDER'";
constexpr const char* kPutOrChoose =
    "put Deckman's own there, or choose Deckman's own folder: in the dialog, or by 'halyrigctl choose FOLDER'";
constexpr const char* kSuggest = "'halyrigctl map suggest --apply' maps what Deckman has";
constexpr const char* kSeeProgram = "see to the program that gives it";

constexpr ReasonRow kReasons[] = {
    {Reason::kNone, LinkName::kAlternates, "", "", ""},
    {Reason::kStandsForNone, LinkName::kAlternates, "stands-for-none", "it stands for no channel now",
     "name one for this state in {0}"},
    {Reason::kAlternatesOld, LinkName::kAlternates, "alternates-old",
     "it stands for no channel: the record was made before alternate.csv was changed", kRestartAll},
    {Reason::kAlternatesDamaged, LinkName::kAlternates, "alternates-damaged", "it stands for no channel: {0}", ""},
    {Reason::kNoPlace, LinkName::kSuite, "no-place", "boat {0} has no place for {1}",
     "only boats 0 and 1 have one for every channel"},
    {Reason::kBlocked, LinkName::kSuite, "blocked", "the channel is blocked: another program of the suite refuses its values",
     "release it there"},
    {Reason::kHeld, LinkName::kSuite, "held",
     "the channel is held: another program of the suite has stopped new values for it (system flag 52)", "let them go on there"},
    {Reason::kPositionOld, LinkName::kPosition, "position-source-old",
     "the record was made before the position source (Sys_i6) became Deckman's, 3", kRestartAll},
    {Reason::kPositionSource, LinkName::kPosition, "position-source", "{0} taken from Deckman only {1}, and it is {2}",
     "set it in the registry, then end all programs of the suite and start them again"},
    {Reason::kNotRunning, LinkName::kBridge, "bridge-not-running", "the bridge is not running", "start " HALYRIG_PROGRAM},
    {Reason::kStatusNotSeen, LinkName::kBridge, "bridge-not-seen", "the bridge is running, but its status can't be seen",
     "restart it"},
    {Reason::kBridgeUnknown, LinkName::kBridge, "bridge-unknown", "whether the bridge is running can't be seen: {0}", ""},
    {Reason::kRecordGone, LinkName::kBridge, "record-lost", kRecordLost, kRecordLostToDo},
    {Reason::kRecordRefused, LinkName::kBridge, "record-refused", "the bridge can't start: {0}", "{1}"},
    {Reason::kLibraryWaits, LinkName::kBridge, "library-waits",
     "the bridge stands still: Deckman's library, which it has called, has not returned for {0}",
     "if it goes on, see whether Deckman itself hangs, end both and start them again"},
    {Reason::kStandsStill, LinkName::kBridge, "stands-still",
     "the bridge stands still: it is stopped, or another program holds it up", "end it and start it again"},
    {Reason::kNotPermitted, LinkName::kLibrary, "not-permitted",
     "{0} can't be read by this user: {1} belongs to {2} and has the mode {3}", ""},
    {Reason::kNameInOtherCase, LinkName::kLibrary, "name-in-other-case", "there is no {0}, but {1}, and capitals count",
     "rename {1} to {2}"},
    {Reason::kSettingsNotRead, LinkName::kLibrary, "settings-not-read", "the settings, and so the Dfw folder, are lost: {0}", ""},
    {Reason::kNoFolderChosen, LinkName::kLibrary, "no-folder-chosen", "no Dfw folder is chosen", kChoose},
    {Reason::kFolderOfAShell, LinkName::kLibrary, "folder-of-a-shell",
     "the Dfw folder {0} begins with ~, which only a shell understands", "write the whole path"},
    {Reason::kFolderNotWhole, LinkName::kLibrary, "folder-not-whole", "the Dfw folder {0} is not a whole path",
     "write it from the root on"},
    {Reason::kFolderMissing, LinkName::kLibrary, "folder-missing", "the Dfw folder {0} does not exist", kChoose},
    {Reason::kFolderIsFile, LinkName::kLibrary, "folder-is-file", "the Dfw folder {0} is a file, not a folder", kChoose},
    {Reason::kLibraryAbove, LinkName::kLibrary, "library-above", "the Dfw folder {0} holds no {1}, but the folder above it does",
     "choose that one"},
    {Reason::kLibraryMissing, LinkName::kLibrary, "library-missing", "the Dfw folder {0} holds no {1}", kChoose},
    {Reason::kOtherLibrary, LinkName::kLibrary, "other-library", "the Dfw folder {0} holds no {1}, only {2}",
     "choose a folder with a library for this system"},
    {Reason::kLibraryUnreadable, LinkName::kLibrary, "library-unreadable", "{0} can't be read", "let this user read it"},
    {Reason::kLibraryReadFails, LinkName::kLibrary, "library-read-fails", "{0} can't be read: {1}",
     "see whether the disk is sound"},
    {Reason::kNotALibrary, LinkName::kLibrary, "not-a-library", "{0} is no library but another kind of file", kPutOrChoose},
    {Reason::kOtherProgram, LinkName::kLibrary, "other-kind", "{0} is for another kind of program ({1}), and the bridge is for {2}",
     "put the library for that there"},
    {Reason::kProgram, LinkName::kLibrary, "a-program", "{0} is a program, not a library", kPutOrChoose},
    {Reason::kLibraryDamaged, LinkName::kLibrary, "library-damaged",
     "{0} can't be loaded: it is damaged, or a library that it needs is missing", "install Deckman again"},
    {Reason::kLoadsNow, LinkName::kLibrary, "library-not-loaded",
     "the bridge could not load Deckman's library when it looked, and could now", kReadAgain},
    {Reason::kFunctionMissing, LinkName::kLibrary, "function-missing", "the library in {0} has no function {1}{2}",
     "install Deckman's own there"},
    {Reason::kVariablesNotRead, LinkName::kVariables, "variables-not-read", "{0}Deckman's list can't be read, or names no variable",
     "look at it while Deckman is closed"},
    {Reason::kNoVariableFile, LinkName::kVariables, "no-variable-file",
     "there is no file of variables (Data/{1}) with a variable in the Dfw folder {0}", kChoose},
    {Reason::kListDamaged, LinkName::kVariables, "list-damaged", "{0}", ""},
    {Reason::kListNotYetRead, LinkName::kVariables, "list-not-yet-read",
     "the bridge found no list of variables in Deckman's folder when it looked, and there is one now", kReadAgain},
    {Reason::kNoMapping, LinkName::kMapping, "no-mapping", "there is no mapping ({0})", kSuggest},
    {Reason::kMappingEmpty, LinkName::kMapping, "mapping-empty", "the mapping ({0}) is an empty file", kSuggest},
    {Reason::kMappingDamaged, LinkName::kMapping, "mapping-damaged", "{0}", ""},
    {Reason::kNotYetRead, LinkName::kMapping, "not-yet-read", "{0}, which the bridge has not read yet", kReadAgain},
    {Reason::kLineFlawed, LinkName::kMapping, "line-flawed", "{0}", ""},
    {Reason::kDataFolderOld, LinkName::kMapping, "data-folder-old",
     "the record was made before the data folder became {0}, and no line of the mapping ({1}) feeds it", kRestartAll},
    {Reason::kNotMapped, LinkName::kMapping, "not-mapped", "no line of the mapping ({0}) feeds it{1}", ""},
    {Reason::kReadingUnusable, LinkName::kDeckman, "reading-unusable", "Deckman gives {0}",
     "see in Deckman to the sensor, or how it is computed"},
    {Reason::kReadingNone, LinkName::kDeckman, "no-reading", "Deckman gives no value now{0}",
     "see in Deckman whether the sensor is there"},
    {Reason::kReadingNever, LinkName::kDeckman, "never-a-reading", "Deckman has never given a value{0}",
     "see in Deckman whether the sensor is there"},
    {Reason::kNoVariationForBox, LinkName::kBox, "no-variation",
     "Deckman's bearings are taken as true, by the box, and there is no variation (MagVar, channel 93) to make {0} magnetic",
     "map Deckman's variation to channel 93, or untick the box for degrees true"},
    {Reason::kOutsideRange, LinkName::kRange, "outside-range", "Deckman gives {0}, outside the channel's range of {1}",
     "see to the sensor and to Deckman's calibration"},
    {Reason::kNothingCame, LinkName::kRecord, "nothing-came", "nothing has come yet", "look again in a moment"},
    {Reason::kSourceNone, LinkName::kRecord, "source-none", "its source gives no value, or one outside the channel's range",
     kSeeProgram},
    {Reason::kSourceUnusable, LinkName::kRecord, "source-unusable", "its source gives {0}", kSeeProgram},
    {Reason::kStale, LinkName::kLimit, "stale", "it is stale: last published {0} ago, and the limit is {1}",
     "see whether the program that gives it still runs{2}"},
    {Reason::kNoVariationForTrue, LinkName::kShown, "no-variation-shown",
     "bearings are shown true, and there is no variation (MagVar, channel 93)",
     "map Deckman's variation to channel 93, or set Sys_b3 to 1"},
    {Reason::kNoSuchUnit, LinkName::kShown, "no-such-unit", "the unit chosen for it does not exist",
     "choose another one in the registry"},
    {Reason::kNoZone, LinkName::kShown, "no-zone", "no time of day can be shown: this computer's time zone is not known to it",
     "set one that it knows, as TZ=Europe/London"},
    {Reason::kNoTexts, LinkName::kRemote, "no-texts", "the library has no functions {0} and {1}, which show texts",
     "install Deckman's own there"},
    {Reason::kNotDamped, LinkName::kRemote, "not-damped", "{0} is to show the damped value, and no program of the suite damps it",
     "leave out damp in its line of the mapping, or write damp=\"false\""},
    {Reason::kNotFed, LinkName::kRemote, "not-fed", "remote {0} is to show {1}, and nothing feeds that{2}",
     "feed it by a line of the mapping, unless another program of the suite does"},
    {Reason::kDampedElsewhere, LinkName::kRemote, "damped-elsewhere",
     "remote {0} is to show the damped value, which another program of the suite must provide", ""},
    {Reason::kNoTimer, LinkName::kVariables, "no-timer", "the box for TIMER is ticked, and the list has no variable TIMER",
     "untick the box"},
    {Reason::kNothingMapped, LinkName::kMapping, "nothing-mapped", "it maps nothing", kSuggest},
    {Reason::kTimeChannel, LinkName::kMapping, "time-channel", "the Time channel follows the clock, so the line has no effect",
     "leave it out"},
    {Reason::kAlternatingChannel, LinkName::kMapping, "alternating-channel",
     "{0} stands for other channels, so the line has no effect", "feed those"},
    {Reason::kChannelTwice, LinkName::kMapping, "channel-twice", "line {0} feeds {1} too, and values get lost",
     "give each channel one line"},
    {Reason::kRemoteTwice, LinkName::kRemote, "remote-twice", "line {0} shows on remote {1} too", "give each remote one line"},
    {Reason::kNoRemoteZero, LinkName::kRemote, "no-such-remote", "there is no remote 0", "they count from 1"},
    {Reason::kNotInForce, LinkName::kSuite, "not-in-force",
     "it says other than what is in force ({0}): it has changed since the record was made, or a program of the suite has changed "
     "that",
     "to have it read, end all programs of the suite and start them again"},
    {Reason::kChangedSinceRead, LinkName::kMapping, "changed-since-read", "it has changed since the bridge read it", kReadAgain},
    {Reason::kOlderMapping, LinkName::kMapping, "older-mapping",
     "an older mapping, which the button Import takes over on request: {0}", ""},
    {Reason::kUnitDiffers, LinkName::kMapping, "unit-differs",
     "{0} feeds {1}, and Deckman's list has it in {2}, which is not its unit",
     "feed it from another variable, unless the list is wrong"},
    {Reason::kBoxAndUnitDiffer, LinkName::kBox, "box-and-unit-differ", "Deckman's list has {0} in {1}, and the box for {2} is {3}",
     "see whether {4} right, and set the box by that"},
    {Reason::kAlternatesMissing, LinkName::kAlternates, "alternates-missing",
     "there is no such file, so {0} no value: alternating channels stand for none", "name in it what they stand for"},
};

// {0} stands for the finding's text, {1} for the last channel's number.
struct FlawRow {
    Flaw flaw;
    std::string_view word, what, todo;
};

constexpr FlawRow kFlaws[] = {
    {Flaw::kByteOrderMark, "byte-order-mark", "the byte-order mark at the start of the file spoils this line",
     "save the file without one, as ANSI or plain UTF-8"},
    {Flaw::kLineNotRead, "line-not-read", "the line can't be read", "write it as {0}"},
    {Flaw::kLineCut, "line-cut", "the line is longer than 1 MiB, and only its start is read", "shorten it"},
    {Flaw::kFileCut, "file-cut", "the file is larger than 64 MiB, and nothing behind this line is read", "shorten it"},
    {Flaw::kReadFailed, "read-failed", "reading it fails ({0}), and nothing from here on is used",
     "see whether the disk is sound and this user may read the file"},
    {Flaw::kNotWellFormed, "not-well-formed", "from here on it is not XML, and nothing behind is read{0}", "mend the line"},
    {Flaw::kOtherRoot, "other-root", "the file begins with another element, and nothing of it is read", "begin it with <{0}>"},
    {Flaw::kUnknownElement, "unknown-element", "there is no element {0}", "check how it is spelled"},
    {Flaw::kUnknownAttribute, "unknown-attribute", "there is no attribute {0}", "check how it is spelled"},
    {Flaw::kEmptyAttribute, "empty-attribute", "{0} is empty and counts as missing", "give it a value, or leave it out"},
    {Flaw::kNotANumber, "not-a-number", "{0} is not a number", "write a number"},
    {Flaw::kOutOfRange, "out-of-range", "{0} is out of range", "choose another number"},
    {Flaw::kChannelMissing, "channel-missing", "it names no channel", "give its number as twr"},
    {Flaw::kNoSuchChannel, "no-such-channel", "there is no channel {0}", "'halyrigctl channels' lists them, 1 to {1}"},
    {Flaw::kNoSuchBoat, "no-such-boat", "there is no boat {0}", "the boats are 0 to 99"},
    {Flaw::kVariableMissing, "variable-missing", "it names no variable of Deckman", "give its name as dfw"},
    {Flaw::kNoSuchVariable, "no-such-variable", "Deckman's list has no variable {0}", "capitals count"},
    {Flaw::kRemoteMissing, "remote-missing", "it names no remote", "give its number as remote"},
    {Flaw::kNoSuchRemote, "no-such-remote", "there is no remote {0}", "they count from 1"},
    {Flaw::kIdMissing, "id-missing", "it has no id, so it has no effect", "give the id first"},
    {Flaw::kIdNotFirst, "id-not-first", "{0} stands before id and has no effect", "put id first"},
    {Flaw::kNoDecimals, "no-decimals", "prec has no effect, since the channel's values have no decimals", "leave it out"},
    {Flaw::kNoSuchType, "no-such-type", "there is no type {0}, and it counts as a plain number", "see the types in channels.md"},
    {Flaw::kNotDampable, "not-dampable", "damp has no effect, since the channel can't be damped", "leave it out"},
    {Flaw::kNotUsersChannel, "not-a-user-channel", "{0} has no effect here", "use one of the user channels, 172 to 203"},
    {Flaw::kCut, "cut", "the name is too long and is cut to {0}", "choose one of at most 31 characters"},
    {Flaw::kSemicolons, "semicolons", "the line has semicolons in the place of commas and is not read",
     "save the file with commas: {0}"},
    {Flaw::kNoSuchRow, "no-such-row", "there is no row {0}", "the rows are 0 to 9, for channels 117 to 126"},
    {Flaw::kNoVariables, "no-variables", "it has no line [variables], so it names none", "restore Deckman's own file"},
    {Flaw::kListEnds, "list-ends", "Deckman's list is read only up to here: the line has no six columns, or its number falls",
     "mend the line"},
    {Flaw::kStoreNotRead, "settings-not-read", "the settings can't be read: {0}", "give this user a plain file to read"},
    {Flaw::kKeyNotRead, "key-not-read", "the key can't be read, nor anything below it", "end it with ]"},
    {Flaw::kOtherKey, "other-key", "this key and all below it are not read", "write it as [{0}]"},
    {Flaw::kValueNotRead, "value-not-read", "the value can't be read", "write \"name\"=\"text\" or \"name\"=dword:00000001"},
    {Flaw::kNotAText, "not-a-text", "the value is not read: it is not a text of at most 511 characters", "save it as a text"},
    {Flaw::kNotADword, "not-a-dword", "the value is not read: it is not a DWORD", "save it as a DWORD"},
    {Flaw::kTextNotANumber, "text-not-a-number", "\"{0}\" is not a number and is not used",
     "write a number in the quotation marks"},
    {Flaw::kBounded, "bounded", "the number is out of bounds, and {0} is used", "choose another number"},
    {Flaw::kNoSuchFolder, "no-such-folder", "the folder {0} does not exist and is not used", "make it, or name another"},
    {Flaw::kUnknownSetting, "unknown-setting", "there is no setting of this name", "check how it is spelled"},
    {Flaw::kForeignSetting, "foreign-setting", "the bridge does not read it",
     "check how it is spelled, unless it is another program's"},
};

template <auto Key, class Row, std::size_t Count>
constexpr bool AreInOrder(const Row (&rows)[Count], std::size_t count) {
    for (std::size_t i = 0; i < Count; ++i) {
        if (static_cast<std::size_t>(rows[i].*Key) != i) return false;
    }
    return Count == count;
}
static_assert(AreInOrder<&ReasonRow::reason>(kReasons, kReasonCount));
static_assert(AreInOrder<&FlawRow::flaw>(kFlaws, kFlawCount));

const ReasonRow& RowOf(Reason reason) { return kReasons[static_cast<std::size_t>(reason)]; }
const FlawRow& RowOf(Flaw flaw) { return kFlaws[static_cast<std::size_t>(flaw)]; }

std::string Filled(std::string_view pattern, std::span<const std::string> fills) {
    std::string filled;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool isPlace = pattern[i] == '{' && i + 2 < pattern.size() && pattern[i + 2] == '}';
        if (!isPlace) {
            filled += pattern[i];
            continue;
        }
        if (const auto number = static_cast<std::size_t>(pattern[i + 1] - '0'); number < fills.size()) filled += fills[number];
        i += 2;
    }
    return filled;
}

}  // namespace

std::string_view WordFor(LinkName link) { return kLinkWords[static_cast<std::size_t>(link)]; }

Fault::Fault(Reason why, std::initializer_list<std::string> fills, const std::string& todoHere)
    : Advice{Filled(RowOf(why).what, fills), todoHere.empty() ? Filled(RowOf(why).todo, fills) : todoHere}, reason(why) {}

Fault PositionFault(const std::string& who, int now) {
    return Fault(Reason::kPositionSource, {who, kWhilePositionSource, std::to_string(now)});
}

LinkName LinkOf(Reason reason) { return RowOf(reason).link; }

std::string_view WordFor(Reason reason) { return RowOf(reason).word; }

Advice AdviceFor(const Finding& finding) {
    const FlawRow& row = RowOf(finding.flaw);
    std::string text = Harmless(finding.text);
    if (finding.flaw == Flaw::kNotWellFormed && !text.empty()) text = " (" + text + ")";
    const bool number = !text.empty() && text.front() >= '0' && text.front() <= '9';
    const std::string fills[] = {text, std::to_string(kChannelCount - 1)};
    if (finding.flaw == Flaw::kNoSuchVariable && number)
        return {Filled(row.what, fills), "its numbers may have changed; use names"};
    return {Filled(row.what, fills), Filled(row.todo, fills)};
}

bool ComplainOfUnread(Console& console, const std::vector<Finding>& findings) {
    bool any = false;
    for (const Finding& finding : findings) {
        if (finding.flaw != Flaw::kReadFailed) continue;
        any = true;
        Complain(console,
                 Harmless(finding.path) + (finding.line > 0 ? ":" + std::to_string(finding.line) : "") + ": " + Words(finding));
    }
    return any;
}

std::string_view WordFor(Flaw flaw) { return RowOf(flaw).word; }

}  // namespace twr
