#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "base/wide_text.h"
#include "support/linux/environment_variable.h"
#include "support/test_system.h"

namespace twr {
namespace {

using testing::EnvironmentVariable;

TEST(UserRoots, FollowTheEnvironment) {
    const std::string user = std::to_string(getuid());
    const struct {
        const char *home, *config, *data, *runtime;
        std::string registry, programData, lock;
    } rows[] = {
        {"/h", nullptr, nullptr, nullptr, "/h/.config/tidewright/registry.reg", "/h/.local/share", "/tmp -" + user},
        {"/h", "/c", "/d", "/dev", "/c/tidewright/registry.reg", "/d", "/dev "},
        {"/h", "relative", "", "/no/such/folder", "/h/.config/tidewright/registry.reg", "/h/.local/share", "/tmp -" + user},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.registry);
        const EnvironmentVariable home("HOME", row.home), config("XDG_CONFIG_HOME", row.config);
        const EnvironmentVariable data("XDG_DATA_HOME", row.data), runtime("XDG_RUNTIME_DIR", row.runtime);
        const Roots roots = UserRoots();
        EXPECT_EQ(row.registry, ToUtf8(roots.registry));
        EXPECT_EQ(row.programData, ToUtf8(roots.programData));
        EXPECT_EQ(row.lock, ToUtf8(roots.runtime) + ' ' + ToUtf8(roots.lockTag));
        EXPECT_EQ(u"", roots.namePrefix);
    }
    const EnvironmentVariable homeless("HOME", nullptr), data("XDG_DATA_HOME", nullptr);
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
    std::string text;
    for (const auto part : *version) text += std::to_string(part) + '.';
    EXPECT_EQ(HALYRIG_VERSION ".0.", text);
}

}  // namespace
}  // namespace twr
