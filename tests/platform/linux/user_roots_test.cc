#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "base/version.h"
#include "base/wide_text.h"
#include "support/linux/environment_variable.h"
#include "support/test_system.h"

namespace twr {
namespace {

using testing::EnvironmentVariable;

TEST(UserRoots, FollowTheEnvironment) {
    const std::string user = std::to_string(geteuid()), session = "/run/user/" + user;
    const std::string always = (std::filesystem::exists(session) ? session + ' ' : "") + "/tmp-" + user + ' ';
    const struct {
        const char *home, *config, *data, *runtime;
        std::string registry, programData, locks;
    } rows[] = {
        {"/h", nullptr, nullptr, nullptr, "/h/.config/tidewright/registry.reg", "/h/.local/share", always},
        {"/h", "/c", "/d", "/dev", "/c/tidewright/registry.reg", "/d", "/dev " + always},
        {"/h", "relative", "", "/no/such/folder", "/h/.config/tidewright/registry.reg", "/h/.local/share", always},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.registry);
        const EnvironmentVariable home("HOME", row.home), config("XDG_CONFIG_HOME", row.config);
        const EnvironmentVariable data("XDG_DATA_HOME", row.data), runtime("XDG_RUNTIME_DIR", row.runtime);
        const Roots roots = UserRoots();
        EXPECT_EQ(row.registry, ToUtf8(roots.registry));
        EXPECT_EQ(row.programData, ToUtf8(roots.programData));
        std::string locks;
        for (const LockPlace& place : roots.locks) locks += ToUtf8(place.folder + place.tag) + ' ';
        EXPECT_EQ(row.locks, locks);
        EXPECT_EQ(u"", roots.namePrefix);
    }
    const EnvironmentVariable homeless("HOME", nullptr), data("XDG_DATA_HOME", nullptr);
    EXPECT_TRUE(UserRoots().programData.ends_with(u"/.local/share")) << "from the list of users";
}

// Two starts of one user whose environments name different folders have one place in common.
TEST(LockFiles, LetOneStartWhateverItsEnvironmentAndGiveWayToNoForeignFile) {
    const struct {
        const char* what;
        std::function<void(const std::filesystem::path&)> plant;  // at the file in the common folder
        const char* told;
        bool second;  // may start too
    } rows[] = {
        {"nothing there", [](const auto&) {}, "", false},
        {"a link", [](const auto& path) { std::filesystem::create_symlink("/dev/null", path); }, "it is a link", true},
        {"a folder", [](const auto& path) { std::filesystem::create_directory(path); }, "Is a directory", true},
        {"a file of another user's",
         [](const auto& path) {
             std::ofstream(path).put('x');
             if (chown(path.c_str(), 12345, 12345) != 0) std::filesystem::remove(path);  // only root can plant it
         },
         geteuid() == 0 ? "it belongs to another user" : "", geteuid() == 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const testing::TempFolder folder;
        for (const char* name : {"a", "b", "common"}) std::filesystem::create_directory(folder.Path() / name);
        const auto system = [&](const char* own) {
            Roots roots = testing::TestRoots("x", folder.Text());
            roots.namePrefix.clear();
            roots.locks = {{folder.File(own)}, {folder.File("a/../common"), u"-7"}, {folder.File("common"), u"-7"}};
            return MakeSystem(roots);
        };
        const std::filesystem::path common = folder.Path() / "common/halyrig-7.lock";
        row.plant(common);
        auto first = system("a");
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(first->GetInstance().Claim(u"Halyrig"));
        const std::string told = ::testing::internal::GetCapturedStderr();
        EXPECT_TRUE(told.empty() == !*row.told && told.find(row.told) != told.npos) << told;
        EXPECT_TRUE(std::filesystem::exists(folder.Path() / "a/halyrig.lock"));
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(system("a")->GetInstance().Claim(u"Halyrig"));
        EXPECT_EQ(row.second, system("b")->GetInstance().Claim(u"Halyrig"));
        first.reset();
        EXPECT_TRUE(system("b")->GetInstance().Claim(u"Halyrig"));
        ::testing::internal::GetCapturedStderr();
    }
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
