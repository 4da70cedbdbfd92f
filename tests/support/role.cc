// SPDX-License-Identifier: MIT
// The roles of a test program, and the main of every one.
#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "platform/console.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

using Body = std::function<int(const std::vector<std::string>&)>;

constexpr const char* kRoleOption = "--run-role";

std::map<std::string, Body>& Roles() {
    static std::map<std::string, Body> roles;
    return roles;
}

}  // namespace

Role::Role(const char* name, Body body) { Roles()[name] = std::move(body); }

std::unique_ptr<ChildProcess> StartRole(const std::string& role, const std::vector<std::string>& arguments) {
    std::vector<std::string> all{kRoleOption, role};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return StartProgram(OwnProgram(), all);
}

}  // namespace twr::testing

int main(int argc, char** argv) {
    const auto arguments = twr::Arguments(argc, argv);
    if (argc > 2 && arguments[0] == twr::testing::kRoleOption) {
        return twr::testing::Roles().at(arguments[1])({arguments.begin() + 2, arguments.end()});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
