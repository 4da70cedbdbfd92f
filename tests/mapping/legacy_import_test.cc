#include "mapping/legacy_import.h"

#include <gtest/gtest.h>

#include "platform/wide_text.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

class LegacyImportTest : public ::testing::Test {
protected:
    LegacyImportTest() {
        for (const auto& [id, name] :
             {std::pair(0, u"ZERO"), std::pair(12, u"HDG"), std::pair(17, u"BSP"), std::pair(17, u"TWIN")}) {
            MappingVar& variable = catalogue.emplace_back();
            variable.dfwId = id;
            variable.dfwName = name;
            variable.dfwColumn4 = 4;
        }
    }

    void Put(std::string bytes) { files.files = {{u"/legacy.csv", std::move(bytes)}}; }

    std::string Vars(std::string bytes) {
        Put(std::move(bytes));
        const auto rows = ImportLegacyVars(files, u"/legacy.csv", catalogue);
        if (!rows) return "failed";
        std::string shown;
        for (const MappingVar& row : *rows) {
            shown += std::to_string(row.channel) + "=" + std::to_string(row.dfwId) + ToBytes(row.dfwName) + "@" +
                     std::to_string(row.boat) + " ";
        }
        return shown;
    }

    std::string Remotes(std::string bytes) {
        Put(std::move(bytes));
        std::string shown;
        for (const MappingRemote& row : ImportLegacyRemotes(files, u"/legacy.csv")) {
            shown += std::to_string(row.remote) + "=" + std::to_string(row.channel) + (row.damp ? "d" : "") + "@" +
                     std::to_string(row.boat) + " ";
            EXPECT_EQ(kNoInt, row.lastChannel);
            EXPECT_EQ(kNoValue, row.lastValue);
        }
        return shown;
    }

    FakeFiles files;
    std::vector<MappingVar> catalogue;
};

TEST_F(LegacyImportTest, VariableLinesAreKeptOrDropped) {
    const struct {
        std::string bytes, shown;
    } rows[] = {
        {"12,5\n", "5=12HDG@0 "},
        {"12,5,7\r\n17,1,0\r\n", "5=12HDG@7 1=17BSP@0 "},
        {"12,5,", "5=12HDG@0 "},
        {" 12, 5, 7 and more", "5=12HDG@7 "},
        {"12,5,7,8,9", "5=12HDG@7 "},
        {"0,413", "413=0ZERO@0 "},
        {"12,5\n12,5\n", "5=12HDG@0 5=12HDG@0 "},
        {"\n\nchannel,variable\n99,5\n12,5\n;12,6\n", "5=12HDG@0 "},
        {"12 ,5", "failed"},
        {"12;5", "failed"},
        {"12", "failed"},
        {"12,0", "failed"},
        {"12,414", "failed"},
        {"12,-1", "failed"},
        {"12,5,100", "failed"},
        {"12,5,-1", "failed"},
        {"13,5", "failed"},
        {"\xEF\xBB\xBF"
         "12,5\n17,1\n",
         "1=17BSP@0 "},
        {"4294967308,5", "5=12HDG@0 "},
        {"", "failed"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.shown, Vars(row.bytes)) << row.bytes;
    files.files.clear();
    EXPECT_FALSE(ImportLegacyVars(files, u"/legacy.csv", catalogue));
}

TEST_F(LegacyImportTest, RemoteLinesAreKeptOrDropped) {
    const struct {
        std::string bytes, shown;
    } rows[] = {
        {"0,0,0,1\n", "1=0d@0 "},
        {"4,13,2,0,9\r\n1,117,0,-3\r\n", "5=13@2 2=117d@0 "},
        {"0,13,0\n", ""},
        {"0,414,0,1\n0,-1,0,1\n0,13,100,1\n0,13,-1,1\nx,13,0,1\n", ""},
        {"2147483647,13,0,0\n", "-2147483648=13@0 "},
        {"", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(row.shown, Remotes(row.bytes)) << row.bytes;
    files.files.clear();
    EXPECT_TRUE(ImportLegacyRemotes(files, u"/legacy.csv").empty());
}

TEST_F(LegacyImportTest, RandomBytesDoNoHarm) {
    std::string bytes;
    std::uint32_t seed = 11;
    for (int i = 0; i < 4000; ++i) {
        seed = seed * 1664525 + 1013904223;
        bytes += seed >> 28 == 0 ? static_cast<char>(seed >> 20) : "0123456789,-\n "[(seed >> 8) % 14];
    }
    for (std::size_t length = 0; length < bytes.size(); length += 97) {
        Vars(bytes.substr(0, length));
        Remotes(bytes.substr(0, length));
    }
}

}  // namespace
}  // namespace twr::testing
