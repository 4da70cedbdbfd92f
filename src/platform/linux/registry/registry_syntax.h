// SPDX-License-Identifier: MIT
// The single entries of a registry file's text: how they are read and written.
#pragma once
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace twr {

enum class RegistryEntryKind { kOther, kKey, kKeyDeletion, kValue, kValueDeletion, kDamagedValue };

// A stretch of the text: as a rule one line, its end included; several lines for values that need them.
struct RegistryEntry {
    RegistryEntryKind kind = RegistryEntryKind::kOther;
    std::string raw;
    std::u16string
        name;  // of the key, its root included, or of the value; empty for the default value and a key that can't be read
    RegistryValue value;
};

// Takes the next entry off the front of a text that is not empty. A remark may follow an entry, after a semicolon. A line that
// can't be read is an entry of kind kOther, or kDamagedValue if it shows which value it is meant for.
RegistryEntry TakeRegistryEntry(std::string_view& text);

// The remark after a value, with the blanks before it; empty without one.
std::string_view RemarkOf(const RegistryEntry& entry);

std::string FormatRegistryKey(std::u16string_view key, std::string_view lineEnd);
std::string FormatRegistryValue(std::u16string_view name, const RegistryValue& value, std::string_view lineEnd);

}  // namespace twr
