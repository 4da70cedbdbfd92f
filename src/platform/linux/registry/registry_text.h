// A registry file's text, in the form that the Windows registry editor exports.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

    void AddKey(std::u16string_view key);
    void Set(std::u16string_view key, std::u16string_view name, const RegistryValue& value);

private:
    struct Place {
        bool keyPresent = false;               // the key itself or one below it
        std::optional<std::size_t> keyEnd;     // index after the key's last value
        std::optional<std::size_t> valueAt;    // index of the value in effect
        std::optional<std::size_t> damagedAt;  // index of an entry after it that can't be read
    };
    Place Locate(std::u16string_view key, std::u16string_view name) const;
    void Read(std::string_view utf8, bool (*stop)());
    void Insert(std::size_t at, std::string_view entries);
    void Append(std::string_view entries);

    std::string lineEnd_ = "\r\n";
    std::vector<RegistryEntry> entries_;
    bool stopped_ = false;
};

}  // namespace twr
