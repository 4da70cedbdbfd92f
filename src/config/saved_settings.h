// SPDX-License-Identifier: MIT
// The settings of the suite in the registry, from which a new record is filled, and how the programs of the suite read a key:
// what has another form counts as missing.
#pragma once
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "base/findings.h"
#include "platform/registry.h"

namespace twr {

inline constexpr std::u16string_view kSavedSettingsKey = u"Software\\Tidewright\\core";

// Of sysValue, sysFlag and sysInt, each from its start, as "Sys_v0", "Sys_b0" and "Sys_i0".
inline constexpr std::size_t kSavedValues = 16;
inline constexpr std::size_t kSavedFlags = 34;
inline constexpr std::size_t kSavedInts = 11;

class SavedValues {
public:
    // What is passed over is reported to `findings`, if given.
    SavedValues(const Registry& registry, std::u16string_view key, Findings* findings)
        : registry_(registry), key_(key), findings_(findings) {}

    // As TextOf and DwordOf of the value.
    std::optional<std::u16string> Text(std::u16string_view name, std::size_t longest = std::numeric_limits<std::size_t>::max());
    std::optional<std::uint32_t> Dword(std::u16string_view name);

    // The number at the start of a text of at most `longest` bytes.
    std::optional<double> Number(std::u16string_view name, std::size_t longest);

    void Report(std::u16string_view name, Flaw flaw, std::u16string_view text = {}) const;

    // Reports every value of the key for which none of these has been asked.
    void ReportOthers(Flaw flaw) const;

private:
    std::optional<RegistryValue> Read(std::u16string_view name);

    const Registry& registry_;
    const std::u16string_view key_;
    Findings* const findings_;
    std::set<std::u16string> asked_;  // in capitals; only with findings
};

}  // namespace twr
