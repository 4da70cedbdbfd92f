// SPDX-License-Identifier: MIT
// Names as users type them: channels, and what a mistyped one was meant to be.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/core.h"
#include "deckman/variable_file.h"
#include "halyrigctl/output/say.h"

namespace twr {

// The catalogue's short name; the Time channel, which has none, goes by its long one.
std::u16string_view CatalogueName(ChannelId channel);

// The name shown: the user's if there is one, else the catalogue's.
std::u16string NameForPeople(CCore& core, ChannelId channel);

// The channel with this number, with this short name, or with this name in the user's own words (letter case is ignored); nullopt
// if there is none. A core that is not attached knows no names of the user's.
std::optional<ChannelId> FindChannel(const CCore& core, const std::string& text);

// A variable of Deckman's as a shell takes it: its name if that is plain, else its number.
std::string TypedVariable(const DeckmanVariable& variable);

// "did you mean BSP (1)?": by a name that is near, by the long one, or by another word that sailors have for it. Empty if nothing
// is near.
std::string GuessChannel(const CCore& core, const std::string& typed);

// The channel that a word means beyond doubt, as STW the boat's speed: for people, not for files. In capitals, without blanks.
std::optional<ChannelId> ChannelOfWord(std::u16string_view plain);

// The channels that a user has typed, in their order, and the first text that names none. A text may also be several names with
// commas between them.
struct NamedChannels {
    std::vector<ChannelId> found;
    std::optional<std::string> unknown = {};
    std::string guess = {};  // what that may mean; may be empty
};
NamedChannels FindChannels(const CCore& core, const std::vector<std::string>& typed);

// Says that there is no such channel.
Status ComplainOfChannel(Console& console, const NamedChannels& named);

// In capitals, and without what parts words or is left out in short names.
std::u16string PlainName(std::u16string_view name);

// "did you mean HDG?", or `otherwise` if no name is near.
std::string Guess(std::u16string_view typed, const std::vector<std::u16string>& names, const std::string& otherwise);

// The name that equals `typed` but for letter case, else the first of those that are fewest slips away: a character too many, too
// few or wrong, or two neighbours exchanged. A short name may have one slip, one of five characters or more two. nullopt if no name
// is that near.
std::optional<std::u16string> Nearest(std::u16string_view typed, std::span<const std::u16string> names);

}  // namespace twr
