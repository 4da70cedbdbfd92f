// SPDX-License-Identifier: MIT
#include "platform/code_page.h"

#include "platform/windows/win32.h"

namespace twr {

std::string ToCodePage(std::u16string_view text) {
    const std::wstring wide = ToWide(text);
    std::string bytes(wide.size() * 4, '\0');
    const int length = WideCharToMultiByte(CP_THREAD_ACP, 0, wide.data(), static_cast<int>(wide.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

}  // namespace twr
