// SPDX-License-Identifier: MIT
// A registry file's text, in the form that the Windows registry editor exports.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "platform/linux/registry/registry_syntax.h"

namespace twr {

// Keeps the text byte for byte, including comments, deletions, odd spellings and what is not registry text at all. Only a value
// that is set is rewritten. Later entries override earlier ones, as on import.
class RegistryText {
public:
    // Text is UTF-8, with or without its mark, or UTF-16 with its mark; it is kept as UTF-8. Empty text begins a new registry.
    // `stop` is called at each MiB of the text; if it returns true, reading ends and the object can't be used.
    explicit RegistryText(std::string_view bytes, bool (*stop)() = nullptr);
    bool Stopped() const { return stopped_; }

    std::string Bytes() const;

    // Keys are full paths, their root included.
    bool HasKey(std::u16string_view key) const;
    std::optional<RegistryValue> Find(std::u16string_view key, std::u16string_view name) const;

    // The line, counted from 1, of an entry that is meant for the value but can't be read, unless a later one can.
    std::optional<std::size_t> DamagedLine(std::u16string_view key, std::u16string_view name) const;

    // The names of the values under a key, in the order of their first entries.
    std::vector<std::u16string> Names(std::u16string_view key) const;

    // The line, counted from 1, of a value; 0 if there is none.
    std::size_t LineOf(std::u16string_view key, std::u16string_view name) const;

    // Reports what can't be read, and keys that are not below `root`.
    void Check(std::u16string_view root, const Place& file) const;

    void AddKey(std::u16string_view key);
    void Set(std::u16string_view key, std::u16string_view name, const RegistryValue& value);

private:
    struct Spot {
        bool keyPresent = false;               // the key itself or one below it
        std::optional<std::size_t> keyEnd;     // index after the key's last value
        std::optional<std::size_t> valueAt;    // index of the value in effect
        std::optional<std::size_t> damagedAt;  // index of an entry after it that can't be read
    };
    Spot Locate(std::u16string_view key, std::u16string_view name) const;
    std::size_t LineAt(std::size_t index) const;
    void Read(std::string_view utf8, bool (*stop)());
    void Insert(std::size_t at, std::string_view entries);
    void Append(std::string_view entries);

    std::string lineEnd_ = "\r\n";
    std::vector<RegistryEntry> entries_;
    bool stopped_ = false;
};

}  // namespace twr
