// SPDX-License-Identifier: MIT
#include "base/wide_text.h"
#include "bridge/controls.h"

namespace twr {

std::u16string GetVersionText(const Executable& executable) {
    const auto version = executable.FileVersion();
    if (!version) return {};
    std::string text = std::to_string((*version)[0]);
    for (std::size_t i = 1; i < version->size(); ++i) {
        if (i < 3 || (*version)[i] != 0) text += "." + std::to_string((*version)[i]);
    }
    return FromBytes(text);
}

std::u16string AboutText(const Executable& executable) {
    return u"Halyrig32 v" + GetVersionText(executable) + u"\n\nCopyright \u00A9 2026 The Halyrig authors";
}

}  // namespace twr
