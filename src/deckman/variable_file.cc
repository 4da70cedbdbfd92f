// SPDX-License-Identifier: MIT
#include "deckman/variable_file.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "base/bounded_lines.h"
#include "base/wide_text.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr std::string_view kSection = "[variables]";
constexpr std::u16string_view kTimer = u"TIMER";
constexpr std::size_t kUsualRows = 64;

std::optional<DeckmanVariable> ParseRow(const std::string& line) {
    long long id = 0, column4 = 0, column5 = 0, column6 = 0;  // numbers that overflow wrap into their field
    char name[16], column3[8];
    if (std::sscanf(line.c_str(), "%lld %15[^ \t] %7[^ \t] %lld %lld %lld", &id, name, column3, &column4, &column5, &column6) !=
        6) {
        return std::nullopt;
    }
    DeckmanVariable row;
    row.dfwId = static_cast<std::int32_t>(id);
    row.dfwName = FromBytes(name);
    row.dfwColumn3 = FromBytes(column3);
    row.dfwColumn4 = static_cast<std::int16_t>(column4);
    row.dfwColumn6 = static_cast<std::int16_t>(column6);
    return row;
}

DeckmanCatalogue ParseLines(ByteSource& source, Place place) {
    DeckmanCatalogue catalogue;
    catalogue.rows.reserve(kUsualRows);
    BoundedLines lines(source, kTextMode);
    bool inSection = false;
    std::int32_t previous = 0;
    while (lines.Next()) {
        ++place.line;
        const std::string line(Trimmed(std::string_view(lines.Line())));
        if (line.empty()) continue;
        if (!inSection) {
            inSection = line == kSection;
            continue;
        }
        if (line.front() == '[') break;
        const auto row = ParseRow(line);
        if (!row || row->dfwId < previous) {
            place.Report(Flaw::kListEnds, FromBytes(line));
            break;
        }
        if (lines.Cut()) place.Report(Flaw::kLineCut);
        previous = row->dfwId;
        if (row->dfwName == kTimer) {
            catalogue.timerVariableId = row->dfwId;
        } else {
            catalogue.rows.push_back(*row);
        }
    }
    if (!lines.ReportEnd(place) && !inSection) place.At(0).Report(Flaw::kNoVariables);
    return catalogue;
}

}  // namespace

DeckmanCatalogue ParseVariableFile(Files& files, std::u16string_view path, std::u16string_view copyPath, Findings* findings) {
    const Place place{findings, path};
    if (const auto source = files.Open(path)) return ParseLines(*source, place);
    // Deckman may hold its file so that it can be copied but not opened.
    DeckmanCatalogue catalogue;
    if (files.Copy(path, copyPath)) {
        if (const auto source = files.Open(copyPath)) catalogue = ParseLines(*source, place);
    }
    files.Remove(copyPath);
    return catalogue;
}

DeckmanCatalogue FindVariableFile(Files& files, std::u16string_view dfwFolder, std::u16string_view copyPath, Findings* findings) {
    const std::u16string folder = JoinPath(dfwFolder, u"Data");
    DeckmanCatalogue catalogue;
    const auto hasRows = [&](const std::u16string& path) {
        catalogue = ParseVariableFile(files, path, copyPath, findings);
        if (!catalogue.rows.empty()) catalogue.path = path;
        return !catalogue.rows.empty();
    };
    if (!hasRows(JoinPath(folder, kUsualVariableFile))) std::ranges::any_of(files.List(folder, u"J_vars*.d"), hasRows);
    return catalogue;
}

}  // namespace twr
