// SPDX-License-Identifier: MIT
// Typed values under the keys of the user's registry.
#pragma once
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"

namespace twr {

// The type numbers of a registry. Others exist and pass through as they are.
inline constexpr std::uint32_t kRegistryString = 1;
inline constexpr std::uint32_t kRegistryExpandString = 2;
inline constexpr std::uint32_t kRegistryBinary = 3;
inline constexpr std::uint32_t kRegistryDword = 4;

// A value as it is stored: text as little-endian UTF-16 with its terminating zero, a double word as four little-endian bytes.
// Values of other programs may have neither form.
struct RegistryValue {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> data;

    bool operator==(const RegistryValue&) const = default;
};

// Where a value is kept, for messages: a file and the line in it, or the key's full path and line 0.
struct RegistryPlace {
    std::u16string path;
    std::size_t line = 0;
};

// The case of key and value names is ignored. A key is given below the user's root, its levels separated by backslashes.
class Registry {
public:
    virtual ~Registry() = default;

    // Makes sure that the key exists. False if it can be neither opened nor created.
    virtual bool OpenOrCreate(std::u16string_view key) = 0;

    // nullopt if the key or the value is missing or can't be read.
    virtual std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const = 0;

    // Writes a value, and the key if missing. False on failure.
    virtual bool Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) = 0;

    // The names of a key's values; none without the key, or if it can't be read.
    virtual std::vector<std::u16string> Names(std::u16string_view key) const = 0;

    virtual RegistryPlace PlaceOf(std::u16string_view key, std::u16string_view name) const = 0;

    // Reports what of the store itself can't be read. What is reported here is not told elsewhere again.
    virtual void Check(Findings&) const {}
};

RegistryValue DwordValue(std::uint32_t number);
RegistryValue StringValue(std::u16string_view text);

// The number of a kRegistryDword value of four bytes; nullopt for any other value.
std::optional<std::uint32_t> DwordOf(const std::optional<RegistryValue>& value);

// The text of a string value. It must be of a string type (variables in it stay unexpanded), of at most `longest` bytes, of an even
// length, and its last character is zero; a value of length 0 is empty text. It ends at the first zero. nullopt for any other
// value.
std::optional<std::u16string> TextOf(const std::optional<RegistryValue>& value,
                                     std::size_t longest = std::numeric_limits<std::size_t>::max());

}  // namespace twr
