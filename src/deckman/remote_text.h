// SPDX-License-Identifier: MIT
// Texts in the form in which Deckman's remote displays take them.
#pragma once
#include <array>
#include <string>
#include <string_view>

#include "core/core.h"

namespace twr {

// The text of a value in the user's units, as a remote shows it: upper-case, "-0" for kNoValue. A text of more than 4 characters
// that has a point is cut to 4, wherever the point is.
std::u16string RemoteValueText(const CCore& core, ChannelId channel, double value);

// The form in which a text is passed to the library: at most 15 bytes of it, the rest zero. If no character is above U+00FF, each
// becomes one byte; otherwise the whole text is converted to the machine's code page.
using RemoteField = std::array<char, 16>;
RemoteField ToRemoteField(std::u16string_view text);

}  // namespace twr
