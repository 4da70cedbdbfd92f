// SPDX-License-Identifier: MIT
// The mapping of older installations, in two comma-separated files. They are read and never written.
#pragma once
#include <optional>
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "mapping/mapping_rows.h"
#include "platform/files.h"

namespace twr {

// Lines of "variable number,channel,boat", the boat optional, 0 by default. A line is kept if its values are in range and a row of
// `catalogue`, which it copies, has the number. nullopt if no line is kept or the file can't be read. What is passed over is
// reported to `findings`, if given.
std::optional<std::vector<MappingVar>> ImportLegacyVars(Files& files, std::u16string_view path,
                                                        const std::vector<DeckmanVariable>& catalogue,
                                                        Findings* findings = nullptr);

// Lines of "remote counted from 0,channel,boat,damp", all fields required. Lines or files that can't be read give no rows.
std::vector<MappingRemote> ImportLegacyRemotes(Files& files, std::u16string_view path, Findings* findings = nullptr);

}  // namespace twr
