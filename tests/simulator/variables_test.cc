#include "simulator/variables.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace twr {
namespace {

TEST(Variables, AreThoseOfTheFile) {
    std::ifstream in(SIMULATOR_VARIABLES, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    EXPECT_EQ(VariableFileText(), bytes.str());
}

// As the bridge reads them: numbers that don't fall, six columns, in the section.
TEST(Variables, AreReadFromTheFile) {
    std::istringstream in(VariableFileText());
    std::string line;
    while (std::getline(in, line) && line != "[variables]") {
    }
    std::set<std::string> names;
    for (const Variable& variable : Variables()) {
        ASSERT_TRUE(std::getline(in, line)) << variable.name;
        int number = 0;
        char name[16] = "", unit[8] = "";
        short decimals = -1, isSigned = -1, page = -1;
        ASSERT_EQ(6,
                  std::sscanf(line.c_str(), "%d %15[^ \t] %7[^ \t] %hd %hd %hd", &number, name, unit, &decimals, &isSigned, &page))
            << line;
        EXPECT_EQ(variable.number, number);
        EXPECT_STREQ(variable.name, name);
        EXPECT_STREQ(variable.unit, unit);
        EXPECT_EQ(variable.decimals, decimals);
        EXPECT_EQ(variable.isSigned, isSigned);
        EXPECT_EQ(variable.page, page);
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(variable.quantity, QuantityOf(number)) << name;
    }
    EXPECT_FALSE(std::getline(in, line));
    EXPECT_TRUE(names.contains("TIMER"));
}

TEST(Variables, RiseAndCoverEveryQuantity) {
    std::set<Quantity> quantities;
    std::int32_t before = 0;
    for (const Variable& variable : Variables()) {
        EXPECT_GT(variable.number, before) << variable.name;
        before = variable.number;
        quantities.insert(variable.quantity);
    }
    EXPECT_EQ(kQuantityCount, quantities.size());
    for (const std::int32_t number : {-1, 0, 22, 64, 32767, INT32_MIN, INT32_MAX}) EXPECT_FALSE(QuantityOf(number)) << number;
}

}  // namespace
}  // namespace twr
