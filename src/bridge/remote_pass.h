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

// The text of a value in the user's units, as a remote shows it: upper-case, "-0" for kNoValue. A text of more than 4 characters
// that has a point is cut to 4, wherever the point is.
std::u16string RemoteValueText(const CCore& core, ChannelId channel, double value);

// The form in which a text is passed to the library: at most 15 bytes of it, the rest zero. If no character is above U+00FF, each
// becomes one byte; otherwise the whole text is converted to the machine's code page.
using RemoteField = std::array<char, 16>;
RemoteField ToRemoteField(std::u16string_view text);

class RemotePass {
public:
    explicit RemotePass(const CCore& core) : core_(core) {}

    // Sends every row whose value has changed, and its name if that is due; the rows keep what was last sent. The record must be
    // attached. Sends nothing unless the library has both functions.
    void Run(const DeckmanLibrary& library, std::span<MappingRemote> rows, const Settings& settings) const;

private:
    const CCore& core_;
};

}  // namespace twr
