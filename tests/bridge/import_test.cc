#include "bridge_fixture.h"

namespace twr::testing {
namespace {

constexpr const char* kMappingFile = "Tidewright/instruments/halyrig.xml";

class ImportTest : public BridgeTest {
protected:
    ImportTest() {
        Variables("12 BSP\n13 TWS\n");
        MappingXml("<var twr='1' dfw='12'/><remote remote='9' twr='1'/>");
        deckman.variables = {{12, 6.0f}, {13, 12.0f}};
        before = machine.folder.Read(kMappingFile);
        host.answer = [this](const FakeDesktop::Box& box) {
            whileOpen(box);
            return answer;
        };
    }

    void Legacy(const std::string& vars, const std::string& remotes) {
        machine.folder.Write("Tidewright/halyrig/halyrig.csv", vars);
        if (!remotes.empty()) machine.folder.Write("Tidewright/halyrig/halyrigremotes.csv", remotes);
    }

    std::string Saved() const { return machine.folder.Read(kMappingFile); }
    std::string Kept() const { return machine.folder.Read(kMappingFile + std::string(".bak")); }
    static bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

    std::string before;
    BoxAnswer answer = BoxAnswer::kYes;
    std::function<void(const FakeDesktop::Box&)> whileOpen = [](const FakeDesktop::Box&) {};
};

TEST_F(ImportTest, YesReplacesTheMappingAndSavesIt) {
    Legacy("13,5\n12,1,2\n14,6\n", "0,5,0,1\n");
    Run([&] {
        Variables("12 BSP\n13 TWS\n14 TWD\n");
        host.Press(kImportButton);
        host.Tick();
        EXPECT_EQ(12.0, Own(kTws));
        EXPECT_EQ(kNoValue, Own(kBsp)) << "now another boat's";
        EXPECT_TRUE(deckman.sent.empty()) << "nobody has damped the value";
    });
    ASSERT_EQ(1u, host.boxes.size()) << "no message on success";
    EXPECT_EQ(u"Import legacy Halyrig mappings?", host.boxes[0].text);
    EXPECT_EQ(u"Halyrig32", host.boxes[0].caption);
    EXPECT_EQ(BoxButtons::kYesNo, host.boxes[0].buttons);
    EXPECT_EQ(BoxIcon::kQuestion, host.boxes[0].icon);
    for (const char* line : {R"(<var twr="5" dfw="13" />)", R"(<var twr="1" dfw="12" boat="2" />)", R"(<var twr="6" dfw="14" />)",
                             R"(<remote remote="1" twr="5" damp="true" />)"}) {
        EXPECT_TRUE(Holds(Saved(), line)) << line;
    }
    EXPECT_FALSE(Holds(Saved(), "remote=\"9\""));
    EXPECT_EQ(before, Kept());
}

TEST_F(ImportTest, WithoutRemotesTheFormerOnesAreGone) {
    Legacy("13,5\n", "");
    Run([&] { host.Press(kImportButton); });
    EXPECT_TRUE(Holds(Saved(), R"(<var twr="5" dfw="13" />)"));
    EXPECT_FALSE(Holds(Saved(), "<remote"));
}

TEST_F(ImportTest, NoChangesNothing) {
    Legacy("13,5\n", "0,5,0,1\n");
    for (const BoxAnswer refused : {BoxAnswer::kNo, BoxAnswer::kNone}) {
        answer = refused;
        Run([&] {
            host.Press(kImportButton);
            host.Tick();
            EXPECT_EQ(6.0, Own(kBsp));
        });
        EXPECT_EQ(before, Saved());
        other.reset();
    }
}

TEST_F(ImportTest, AFailureSaysSoAndRestoresTheMappingFile) {
    Legacy("99,5\n", "0,5,0,1\n");
    whileOpen = [&](const FakeDesktop::Box& box) {
        if (box.buttons == BoxButtons::kYesNo) return;
        other->SetChannel(kBsp, 0, 7.0, 0.0);
        deckman.reads.clear();
        deckman.sent.clear();
        host.Tick();
        EXPECT_TRUE(deckman.reads.empty()) << "no variables while the box is open";
        EXPECT_EQ(std::vector<std::string>{"9=7.00"}, deckman.sent) << "but the former remotes";
    };
    Run([&] {
        host.Press(kImportButton);
        host.Tick();
        EXPECT_EQ(6.0, Own(kBsp));
    });
    ASSERT_EQ(2u, host.boxes.size());
    EXPECT_EQ(u"Unable to import legacy mappings.\n\nAttempting to load halyrig.xml.", host.boxes[1].text);
    EXPECT_EQ(BoxButtons::kOk, host.boxes[1].buttons);
    EXPECT_EQ(BoxIcon::kNone, host.boxes[1].icon);
    EXPECT_EQ(before, Saved());
    EXPECT_EQ("", Kept());
}

TEST_F(ImportTest, AQuitRequestWhileItAsksIsHeeded) {
    Legacy("13,5\n", "");
    answer = BoxAnswer::kNone;
    whileOpen = [&](const FakeDesktop::Box&) {
        record->Set<std::uint8_t>(RecordBytes::SysFlag(35), 1);
        host.Tick();
    };
    Run([&] {
        host.Press(kImportButton);
        EXPECT_EQ(DialogResult::kOk, host.result);
    });
    EXPECT_EQ(before, Saved());
}

}  // namespace
}  // namespace twr::testing
