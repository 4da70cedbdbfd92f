// The label under which a remote shows a channel.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// At most 8 upper-case characters of a channel's name, without degree sign and slash, and with "PC" for "%" where there is room.
std::u16string RemoteLabelOf(std::u16string_view name);

}  // namespace twr
