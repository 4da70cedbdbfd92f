// SPDX-License-Identifier: MIT
// Deckman's variable file: which variables exist now, and under which number.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "base/no_value.h"
#include "platform/files.h"

namespace twr {

// In the folder Data of Deckman's.
inline constexpr std::u16string_view kUsualVariableFile = u"J_vars06.d";

struct DeckmanVariable {
    std::int32_t dfwId = kNoInt;  // its number
    std::u16string dfwName;       // at most 15 characters
    std::u16string dfwColumn3;    // carried along from the file, like column 4 and 6
    std::int32_t dfwColumn4 = 0;
    std::int32_t dfwColumn6 = 0;
};

struct DeckmanCatalogue {
    std::vector<DeckmanVariable> rows;  // in the order of the file, TIMER left out
    std::int32_t timerVariableId = -1;  // the number of TIMER, the start timer; -1 if the file has none
    std::u16string path;                // of the file; empty if FindVariableFile has found none with a row
};

// Reads the section [variables] of one file, up to its end or the first line that is not a row or has a lower number than the row
// before it. A file that can't be opened is read from a copy at `copyPath`, which is removed again. What can't be read gives an
// empty catalogue. What ends the reading early is reported to `findings`, if given.
DeckmanCatalogue ParseVariableFile(Files& files, std::u16string_view path, std::u16string_view copyPath,
                                   Findings* findings = nullptr);

// The first file with at least one row: Data/J_vars06.d under the Deckman folder, else the first of Data/J_vars*.d in the order of
// the file system. If there is none, the catalogue of the last file tried, hence without rows.
DeckmanCatalogue FindVariableFile(Files& files, std::u16string_view dfwFolder, std::u16string_view copyPath,
                                  Findings* findings = nullptr);

}  // namespace twr
