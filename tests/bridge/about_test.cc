#include "bridge/about.h"

#include "bridge_fixture.h"

namespace twr::testing {
namespace {

TEST(About, ShowsAFourthNumberOnlyWhenThereIsOne) {
    const struct {
        std::optional<std::array<std::uint16_t, 4>> version;
        std::u16string text;
    } rows[] = {
        {{{2, 5, 1, 0}}, u"2.5.1"},
        {{{2, 5, 1, 7}}, u"2.5.1.7"},
        {{{0, 0, 0, 0}}, u"0.0.0"},
        {{{65535, 1, 0, 65535}}, u"65535.1.0.65535"},
        {{}, u""},
    };
    for (const auto& row : rows) {
        FakeExecutable executable;
        executable.version = row.version;
        EXPECT_EQ(row.text, GetVersionText(executable));
        EXPECT_TRUE(AboutText(executable).starts_with(u"Halyrig32 v" + row.text + u"\n\n"));
    }
}

class AboutTest : public BridgeTest {};

TEST_F(AboutTest, OpensFromTheWindowsMenu) {
    Run([&] {
        EXPECT_EQ(std::vector<std::u16string>{u"&About Halyrig32..."}, host.menuItems);
        host.Choose(17);
        EXPECT_TRUE(host.about.empty());
        host.Choose(16);
        EXPECT_TRUE(host.about.starts_with(u"Halyrig32 v2.5.1\n\n"));
    });
}

}  // namespace
}  // namespace twr::testing
