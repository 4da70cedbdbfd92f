#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "platform/wide_text.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::array kVariables{"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"};

// Puts the four variables in place, a null pointer for one that is not set, and back again.
class Environment {
public:
    explicit Environment(const std::array<const char*, 4>& values) {
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            const char* old = std::getenv(kVariables[i]);
            was_[i] = old != nullptr;
            if (old) old_[i] = old;
            Set(kVariables[i], values[i]);
        }
    }
    ~Environment() {
        for (std::size_t i = 0; i < kVariables.size(); ++i) Set(kVariables[i], was_[i] ? old_[i].c_str() : nullptr);
    }

private:
    static void Set(const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

    std::array<std::string, 4> old_;
    std::array<bool, 4> was_{};
};

TEST(UserRoots, FollowTheEnvironment) {
    const std::string user = std::to_string(getuid());
    const struct {
        std::array<const char*, 4> environment;
        std::string registry, programData, lock;
    } rows[] = {
        {{"/h", nullptr, nullptr, nullptr}, "/h/.config/tidewright/registry.reg", "/h/.local/share", "/tmp -" + user},
        {{"/h", "/c", "/d", "/dev"}, "/c/tidewright/registry.reg", "/d", "/dev "},
        {{"/h", "relative", "", "/no/such/folder"}, "/h/.config/tidewright/registry.reg", "/h/.local/share", "/tmp -" + user},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.registry);
        const Environment environment(row.environment);
        const Roots roots = UserRoots();
        EXPECT_EQ(row.registry, ToUtf8(roots.registry));
        EXPECT_EQ(row.programData, ToUtf8(roots.programData));
        EXPECT_EQ(row.lock, ToUtf8(roots.runtime) + ' ' + ToUtf8(roots.lockTag));
        EXPECT_EQ(u"", roots.namePrefix);
    }
    const Environment homeless({nullptr, nullptr, nullptr, nullptr});
    EXPECT_TRUE(UserRoots().programData.ends_with(u"/.local/share")) << "from the list of users";
}

TEST(UserRoots, LockFilesCarryTheProgramsNameAndTheTag) {
    const testing::TempFolder folder;
    Roots roots = testing::TestRoots("x", folder.Text());
    roots.namePrefix.clear();
    roots.lockTag = u"-7";
    EXPECT_TRUE(MakeSystem(roots)->GetInstance().Claim(u"Halyrig"));
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "halyrig-7.lock"));
}

TEST(Executable, HasTheVersionOfTheBuild) {
    const testing::TestSystem test;
    const auto version = test.system->GetExecutable().FileVersion();
    ASSERT_TRUE(version);
    const auto [major, minor, patch, build] = *version;
    EXPECT_EQ(HALYRIG_VERSION ".0",
              std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch) + '.' + std::to_string(build));
}

}  // namespace
}  // namespace twr
