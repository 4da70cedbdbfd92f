#include <map>
#include <string_view>
#include <utility>

#include "platform/arguments.h"
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

std::optional<int> RunRole(int argc, char** argv) {
    if (argc < 3 || std::string_view(argv[1]) != kRoleOption) return std::nullopt;
    const auto arguments = Arguments(argc, argv);
    return Roles().at(arguments[1])({arguments.begin() + 2, arguments.end()});
}

}  // namespace twr::testing
