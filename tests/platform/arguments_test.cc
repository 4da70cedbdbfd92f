#include "platform/arguments.h"

#include <gtest/gtest.h>

#include "support/child_process.h"

namespace twr::testing {
namespace {

// The main of the test programs gives a role what Arguments gives.
const Role kEcho("echo arguments", [](const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) std::printf("%s\n", argument.c_str());
    return 0;
});

TEST(Arguments, ComeInUtf8AndUndivided) {
    const std::vector<std::string> given{"Gr\u00F6\u00DFe", "\u98A8", "Tm on S", "", R"(a\"b\)", "*"};
    const auto child = StartRole("echo arguments", given);
    for (const std::string& argument : given) EXPECT_EQ(argument, child->ReadLine());
}

}  // namespace
}  // namespace twr::testing
