// SPDX-License-Identifier: MIT
// A tick on which nothing changes takes no memory from the heap.
#include "bridge_fixture.h"
#include "support/allocations.h"

namespace twr::testing {
namespace {

class AllocationTest : public BridgeTest {};

TEST_F(AllocationTest, AQuietTickTakesNoMemory) {
    std::string variables, elements;
    for (int i = 1; i < static_cast<int>(kChannelCount); ++i) {
        const std::string number = std::to_string(i);
        variables += number + " V" + number + "\n";
        elements += "<var twr='" + number + "' dfw='" + number + "'/><remote remote='" + number + "' twr='" + number + "'/>";
    }
    Variables(variables);
    MappingXml(elements);
    Run([&] {
        host.Tick(2);
        ASSERT_GT(deckman.sent.size(), 300u);
        deckman.reads.clear();
        deckman.reads.reserve(10000);
        deckman.sent.clear();
        const int before = Allocations();
        host.Tick(15);
        EXPECT_EQ(0, Allocations() - before) << "with values repeated after a second";
        EXPECT_GT(deckman.reads.size(), 5000u);
        EXPECT_TRUE(deckman.sent.empty());
    });
}

}  // namespace
}  // namespace twr::testing
