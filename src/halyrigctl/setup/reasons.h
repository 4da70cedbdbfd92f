// SPDX-License-Identifier: MIT
// Why a value is missing and what the readers of the user's files pass over, in words that say what to do: for all commands.
#pragma once
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "halyrigctl/output/say.h"

namespace twr {

// The links between Deckman and the user of a value.
enum class LinkName {
    kAlternates,
    kSuite,
    kPosition,
    kBridge,
    kLibrary,
    kVariables,
    kMapping,
    kDeckman,
    kBox,
    kRange,
    kRecord,
    kLimit,
    kShown,
    kRemote,
};

std::string_view WordFor(LinkName link);

enum class Reason {
    kNone,
    // Alternates: what an alternating channel stands for.
    kStandsForNone,
    kAlternatesOld,
    kAlternatesDamaged,
    // Suite: whether it takes new values.
    kNoPlace,
    kBlocked,
    kHeld,
    // Position: whether it is Deckman's.
    kPositionOld,
    kPositionSource,
    // Bridge.
    kNotRunning,
    kStatusNotSeen,
    kBridgeUnknown,
    kRecordGone,
    kRecordRefused,
    kLibraryWaits,
    kStandsStill,
    // A file on the way, at whichever link it is.
    kNotPermitted,
    kNameInOtherCase,
    // Library.
    kSettingsNotRead,
    kNoFolderChosen,
    kFolderOfAShell,
    kFolderNotWhole,
    kFolderMissing,
    kFolderIsFile,
    kLibraryAbove,
    kLibraryMissing,
    kOtherLibrary,
    kLibraryUnreadable,
    kLibraryReadFails,
    kNotALibrary,
    kOtherProgram,
    kProgram,
    kLibraryDamaged,
    kLoadsNow,
    kFunctionMissing,
    // Variables.
    kVariablesNotRead,
    kNoVariableFile,
    kListDamaged,
    kListNotYetRead,
    // Mapping.
    kNoMapping,
    kMappingEmpty,
    kMappingDamaged,
    kNotYetRead,
    kLineFlawed,
    kDataFolderOld,
    kNotMapped,
    // Deckman.
    kReadingUnusable,
    kReadingNone,
    kReadingNever,
    // Box and range.
    kNoVariationForBox,
    kOutsideRange,
    // Record, limit and shown.
    kNothingCame,
    kSourceNone,
    kSourceUnusable,
    kStale,
    kNoVariationForTrue,
    kNoSuchUnit,
    kNoZone,
    // Remote.
    kNoTexts,
    kNotDamped,
    kNotFed,
    kDampedElsewhere,
    // What only a look at all of the set-up shows.
    kNoTimer,
    kNothingMapped,
    kTimeChannel,
    kAlternatingChannel,
    kChannelTwice,
    kRemoteTwice,
    kNoRemoteZero,
    kNotInForce,
    kChangedSinceRead,
    kOlderMapping,
    kUnitDiffers,
    kBoxAndUnitDiffer,
    kAlternatesMissing,
};

inline constexpr std::size_t kReasonCount = static_cast<std::size_t>(Reason::kAlternatesMissing) + 1;

// What is wrong, which reason it is, and what to do; nothing is wrong for kNone.
struct Fault : Advice {
    Fault() = default;
    // The reason's own words, each {0}, {1} ... in them filled. `todoHere` takes the place of the reason's.
    explicit Fault(Reason why, std::initializer_list<std::string> fills = {}, const std::string& todoHere = {});

    Reason reason = Reason::kNone;
};

// `who`, as "position is", waits for the position source, which is `now`.
Fault PositionFault(const std::string& who, int now);

LinkName LinkOf(Reason reason);
// As a word for programs, which stays the same: "position-source".
std::string_view WordFor(Reason reason);

// What makes the suite, or the bridge alone, look again at the user's files.
inline constexpr const char* kRestartAll = "end all programs of the suite and start them again";
inline constexpr const char* kReadAgain = "choose the Dfw folder once more in the dialog, even the same one, or restart the bridge";

// For the channels that follow the position source.
inline constexpr const char* kWhilePositionSource = "while the position source (Sys_i6) is 3";

// Without the place.
Advice AdviceFor(const Finding& finding);
inline std::string Words(const Finding& finding) { return AdviceFor(finding).Line(); }

// Complains of each file among them that could not be read to its end. False if there is none.
bool ComplainOfUnread(Console& console, const std::vector<Finding>& findings);

// The flaw as a word for programs, which stays the same: "no-such-channel".
std::string_view WordFor(Flaw flaw);

}  // namespace twr
