// Rows of the mapping, made and told in few words, so that a test can compare all of them at once.
#pragma once
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "mapping/mapping_rows.h"

namespace twr::testing {

// What Deckman's list could say of a variable.
inline MappingVar Variable(std::int32_t id, std::u16string name) {
    return {.dfwId = id, .dfwColumn4 = 4, .dfwColumn6 = 6, .dfwName = std::move(name), .dfwColumn3 = u"u"};
}

// Each row as "channel=numberNAME@boat ".
inline std::string Told(const std::vector<MappingVar>& rows) {
    std::ostringstream told;
    for (const MappingVar& row : rows) {
        told << row.channel << "=" << row.dfwId << ToBytes(row.dfwName) << "@" << row.boat << " ";
        EXPECT_TRUE(row.dfwColumn3 == u"u" && row.dfwColumn4 == 4 && row.dfwColumn6 == 6) << "columns of " << ToBytes(row.dfwName);
    }
    return told.str();
}

// Each row as "channel>remote@boat ", a damped one with a d.
inline std::string Told(const std::vector<MappingRemote>& rows) {
    std::ostringstream told;
    for (const MappingRemote& row : rows) {
        told << row.channel << ">" << row.remote << (row.damp ? "d" : "") << "@" << row.boat << " ";
        EXPECT_TRUE(row.lastChannel == kNoInt && row.lastValue == kNoValue) << "nothing has been sent to " << row.remote;
    }
    return told.str();
}

}  // namespace twr::testing
