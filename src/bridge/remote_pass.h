// The second half of a tick: from the record to Deckman's remotes.
#pragma once
#include <array>
#include <span>
#include <string>
#include <string_view>

#include "bridge/deckman_library.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "mapping/mapping_rows.h"

namespace twr {

// The text of a value in the user's units, as a remote shows it: upper-case, "-0" for kNoValue. More than 4 characters are cut to 4
// when there is a point in them, wherever the cut falls.
std::u16string RemoteValueText(const CCore& core, ChannelId channel, double value);

// The form in which a text goes to the library: at most 15 bytes of it, the rest zero. A text of characters up to U+00FF goes as
// one byte each; any other goes whole in the code page of the machine.
using RemoteField = std::array<char, 16>;
RemoteField ToRemoteField(std::u16string_view text);

class RemotePass {
public:
    explicit RemotePass(const CCore& core) : core_(core) {}

    // Shows every row whose value has changed, and its name when that is due; the rows keep what they were sent last. The record is
    // attached. Unless the library has both functions nothing is shown.
    void Run(const DeckmanLibrary& library, std::span<MappingRemote> rows, const Settings& settings) const;

private:
    const CCore& core_;
};

}  // namespace twr
