#include "simulator/variables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace twr {
namespace {

TEST(Variables, AreThoseOfTheFile) {
    std::stringstream bytes;
    bytes << std::ifstream(SIMULATOR_VARIABLES, std::ios::binary).rdbuf();
    EXPECT_EQ(VariableFileText(), bytes.str());
    EXPECT_NE(std::string::npos, bytes.str().find("\n[variables]\n  1 BSP             kn      2 0 1\n"));
}

// As a reader of the file needs them: in ascending order, names that fit into it and that no other has.
TEST(Variables, RiseAndCoverEveryQuantity) {
    std::set<Quantity> quantities;
    std::set<std::string> names;
    std::int32_t before = 0;
    for (const Variable& variable : Variables()) {
        SCOPED_TRACE(variable.name);
        EXPECT_GT(variable.number, before);
        before = variable.number;
        EXPECT_EQ(variable.quantity, QuantityOf(variable.number));
        quantities.insert(variable.quantity);
        const std::string name = variable.name, unit = variable.unit;
        EXPECT_TRUE(names.insert(name).second);
        EXPECT_TRUE(name.size() <= 15 && unit.size() <= 7 && (name + unit).find_first_of(" \t") == std::string::npos);
    }
    EXPECT_EQ(kQuantityCount, quantities.size());
    EXPECT_TRUE(names.contains("TIMER"));
    for (const std::int32_t number : {-1, 0, 22, 64, 32767, INT32_MIN, INT32_MAX}) EXPECT_FALSE(QuantityOf(number)) << number;
}

}  // namespace
}  // namespace twr
