#include "text/remote_field.h"

#include <algorithm>
#include <string>

#include "base/wide_text.h"
#include "platform/code_page.h"

namespace twr {

RemoteField ToRemoteField(std::u16string_view text) {
    text = text.substr(0, text.find(u'\0'));
    const bool wide = std::ranges::any_of(text, [](char16_t c) { return c > 0xFF; });
    const std::string bytes = wide ? ToCodePage(text) : ToBytes(text);
    RemoteField field{};
    std::copy_n(bytes.data(), std::min(bytes.size(), field.size() - 1), field.begin());
    return field;
}

}  // namespace twr
