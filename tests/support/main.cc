// The main of every test program.
#include <gtest/gtest.h>

#include "support/child_process.h"

int main(int argc, char** argv) {
    if (const auto status = twr::testing::RunRole(argc, argv)) return *status;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
