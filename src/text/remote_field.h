// The form in which a text goes to the instruments' library.
#pragma once
#include <array>
#include <string_view>

namespace twr {

inline constexpr std::size_t kRemoteFieldBytes = 16;
using RemoteField = std::array<char, kRemoteFieldBytes>;

// At most 15 bytes of the text, the rest zero. A text of characters up to U+00FF goes as one byte each; any other goes whole in
// the code page of the machine.
RemoteField ToRemoteField(std::u16string_view text);

}  // namespace twr
