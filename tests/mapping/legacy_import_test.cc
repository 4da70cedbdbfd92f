#include "mapping/legacy_import.h"

#include "mapping/row_text.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

class LegacyImportTest : public ::testing::Test {
protected:
    std::string Vars(std::string bytes) {
        files.files = {{u"/legacy.csv", std::move(bytes)}};
        const auto rows = ImportLegacyVars(files, u"/legacy.csv", catalogue);
        return rows ? Told(*rows) : "failed";
    }

    std::string Remotes(std::string bytes) {
        files.files = {{u"/legacy.csv", std::move(bytes)}};
        return Told(ImportLegacyRemotes(files, u"/legacy.csv"));
    }

    FakeFiles files;
    std::vector<MappingVar> catalogue{Variable(0, u"ZERO"), Variable(12, u"HDG"), Variable(17, u"BSP"), Variable(17, u"TWIN")};
};

TEST_F(LegacyImportTest, VariableLinesAreKeptOrDropped) {
    const std::pair<std::string, std::string> rows[] = {
        {"12,5,7\r\n17,1,0\r\n", "5=12HDG@7 1=17BSP@0 "},
        {"12,5\n12,5,\n", "5=12HDG@0 5=12HDG@0 "},
        {" 12, 5, 7 and more\n12,5,7,8,9", "5=12HDG@7 5=12HDG@7 "},
        {"0,413,99", "413=0ZERO@99 "},
        {"\n\nchannel,variable\n99,5\n12,5\n;12,6\n", "5=12HDG@0 "},
        {"\uFEFF12,5\n17,1\n", "1=17BSP@0 "},
        {"4294967308,5", "5=12HDG@0 "},
    };
    for (const auto& [bytes, told] : rows) EXPECT_EQ(told, Vars(bytes)) << bytes;
    for (const char* bytes : {"", "12 ,5", "12;5", "12", "12,0", "12,414", "12,-1", "12,5,100", "12,5,-1", "13,5"}) {
        EXPECT_EQ("failed", Vars(bytes)) << bytes;
    }
}

TEST_F(LegacyImportTest, RemoteLinesAreKeptOrDropped) {
    const std::pair<std::string, std::string> rows[] = {
        {"0,0,0,1\n", "0>1d@0 "},
        {"4,13,2,0,9\r\n1,117,0,-3\r\n", "13>5@2 117>2d@0 "},
        {"0,13,0\n0,414,0,1\n0,-1,0,1\n0,13,100,1\n0,13,-1,1\nx,13,0,1\n", ""},
        {"2147483647,13,0,0\n", "13>-2147483648@0 "},
    };
    for (const auto& [bytes, told] : rows) EXPECT_EQ(told, Remotes(bytes)) << bytes;
}

TEST_F(LegacyImportTest, MissingFilesGiveNothing) {
    EXPECT_FALSE(ImportLegacyVars(files, u"/legacy.csv", catalogue));
    EXPECT_TRUE(ImportLegacyRemotes(files, u"/legacy.csv").empty());
}

}  // namespace
}  // namespace twr::testing
