// The tables of core-record.md against the code. Offsets come from the asserts of core_record.h, which the compiler has proved.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "core/channel_catalogue.h"

namespace twr::testing {
namespace {

using Rows = std::vector<std::string>;

Rows Lines(const std::string& path) {
    std::ifstream file(HALYRIG_SOURCE_DIR "/" + path);
    Rows lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// The beginning of each row by the heading of its table: "### `BoatRow`, 80 bytes" has "| 72 | `mmsi` |".
std::map<std::string, Rows> DocumentedTables() {
    std::map<std::string, Rows> tables;
    std::string heading;
    for (const std::string& line : Lines("docs/core-record.md")) {
        std::smatch found;
        if (line.starts_with("#")) heading = line;
        if (std::regex_search(line, found, std::regex(R"(^\| \d+ \| [^|]+ \|)"))) tables[heading].push_back(found.str());
    }
    return tables;
}

std::string FieldCell(const std::string& field) {
    if (field.starts_with("reserved")) return "(reserved)";
    if (field.starts_with("padding") || field == "tablePointer") return "(gap)";
    return "`" + field + "`";
}

TEST(RecordTables, GiveEveryFieldAtItsOffset) {
    std::map<std::string, Rows> fields;
    std::map<std::string, std::string> sizes;
    for (const std::string& line : Lines("src/core/core_record.h")) {
        std::smatch found;
        if (std::regex_search(line, found, std::regex(R"(offsetof\((\w+), (\w+)\) == (\d+))")))
            fields[found[1]].push_back("| " + found.str(3) + " | " + FieldCell(found[2]) + " |");
        if (std::regex_search(line, found, std::regex(R"(sizeof\((\w+)\) == (\d+))"))) sizes[found[1]] = found[2];
    }
    fields["AlternateRow"] = {"| 0 | `slot` |"};  // needs no assert
    ASSERT_EQ(7u, sizes.size());
    const auto documented = DocumentedTables();
    for (const auto& [name, size] : sizes) {
        const auto table = documented.find("### `" + name + "`, " + size + " bytes");
        ASSERT_NE(documented.end(), table) << name << " of " << size << " bytes has no table";
        EXPECT_EQ(fields[name], table->second) << name;
    }
}

TEST(RecordTables, GiveTheShortStoreAsTheCatalogueDoes) {
    const Rows lines = Lines("docs/core-record.md");
    std::size_t found = 0;
    for (const ChannelInfo& info : ChannelCatalogue()) {
        if (info.shortIndex >= kShortChannelCount) continue;
        const std::string cells = "| " + std::to_string(info.shortIndex) + " | " + std::to_string(info.id) + " | " +
                                  (info.name.empty() ? "Time" : ToUtf8(info.name)) + " |";
        EXPECT_TRUE(std::ranges::any_of(lines, [&](const std::string& line) { return line.find(cells) != std::string::npos; }))
            << cells;
        ++found;
    }
    EXPECT_EQ(kShortChannelCount, found);
}

}  // namespace
}  // namespace twr::testing
