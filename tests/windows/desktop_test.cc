// The window host, showing the dialogs among the product's resources.

#include <gtest/gtest.h>

#include <map>
#include <type_traits>

#include "bridge/controls.h"
#include "platform/windows/services.h"
#include "platform/windows/wide.h"
#include "support/scripted_dialog.h"
#include "support/windows/window_probe.h"

namespace twr {
namespace {

using testing::ScriptedDialog;
using testing::WindowProbe;
using Events = std::vector<std::string>;

constexpr DialogTemplate kAbout{100, u"About Halyrig32", 197, 93, {}};

constexpr UINT kSameTime = 10;  // milliseconds from tick to tick

// What a test does on a tick. One that gives a bool is taken again on the next tick until it gives true: a window may need more
// than one to open or to go.
struct Step {
    template <class Action>
    Step(Action action)
        : run([action] {
              if constexpr (std::is_same_v<decltype(action()), bool>) {
                  return action();
              } else {
                  action();
                  return true;
              }
          }) {}

    std::function<bool()> run;
};

class DesktopTest : public ::testing::Test {
protected:
    // Runs the dialog; `steps` come one by one, each from a tick of its own, so that all that was posted before has arrived.
    void Run(std::vector<Step> steps = {}) {
        dialog_.onTimer = [this, steps, next = std::size_t{0}]() mutable {
            if (next < steps.size() && steps[next].run()) ++next;
        };
        const auto wished = dialog_.onInit;
        dialog_.onInit = [this, wished] {
            if (wished) wished();
            dialog_.window->StartTimer(1, kSameTime);
        };
        desktop_.RunDialog(kMainTemplate, dialog_);
        EXPECT_FALSE(WindowProbe::Find(u"Halyrig32", GetCurrentProcessId())) << "a window is left";
    }

    WindowProbe Window() const { return *WindowProbe::Find(u"Halyrig32", GetCurrentProcessId()); }
    void End() const { dialog_.window->End(DialogResult::kOk); }
    BoxAnswer Ask() { return desktop_.ShowBox(u"Exit Halyrig?", u"Question", BoxButtons::kYesNo, BoxIcon::kQuestion); }

    const std::unique_ptr<Desktop> owned_ = MakeDesktop();
    Desktop& desktop_ = *owned_;
    ScriptedDialog dialog_;
};

std::wstring ClassOf(HWND window) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    return name;
}

TEST_F(DesktopTest, ShowsEachControlInItsPlace) {
    struct Look {
        const wchar_t* windowClass;
        LONG style, mask;
    };
    constexpr LONG kButton = BS_TYPEMASK | WS_TABSTOP, kField = ES_READONLY | ES_MULTILINE | WS_TABSTOP;
    const std::map<ControlKind, Look> looks = {
        {ControlKind::kDefaultButton, {WC_BUTTONW, BS_DEFPUSHBUTTON | WS_TABSTOP, kButton}},
        {ControlKind::kPushButton, {WC_BUTTONW, BS_PUSHBUTTON | WS_TABSTOP, kButton}},
        {ControlKind::kCheckBox, {WC_BUTTONW, BS_AUTOCHECKBOX | WS_TABSTOP, kButton}},
        {ControlKind::kLabel, {WC_STATICW, SS_LEFT, SS_TYPEMASK | WS_TABSTOP}},
        {ControlKind::kFolderField, {WC_EDITW, ES_READONLY | WS_TABSTOP, kField}},
    };
    Run({[&] {
        const WindowProbe window = Window();
        std::vector<int> order;
        for (const ControlTemplate& wanted : kMainControls) {
            SCOPED_TRACE(wanted.id);
            order.push_back(wanted.id);
            const HWND control = window.Control(wanted.id);
            const Look& look = looks.at(wanted.kind);
            EXPECT_STREQ(look.windowClass, ClassOf(control).c_str());
            EXPECT_EQ(look.style, GetWindowLongW(control, GWL_STYLE) & look.mask);
            EXPECT_TRUE(IsWindowVisible(control));
            EXPECT_EQ(std::u16string(wanted.caption), window.Text(wanted.id));
            EXPECT_EQ(window.Pixels(wanted.rect), window.Rect(wanted.id));
        }
        EXPECT_EQ(order, window.TabOrder());
        End();
    }});
}

TEST_F(DesktopTest, ShowsAWindowThatCanBeSizedAndMinimised) {
    Run({[&] {
        const HWND window = Window().Handle();
        constexpr LONG kWanted = WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX;
        EXPECT_EQ(kWanted, GetWindowLongW(window, GWL_STYLE) & (kWanted | WS_MAXIMIZEBOX));
        EXPECT_NE(0, GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_APPWINDOW);
        EXPECT_EQ(nullptr, GetWindow(window, GW_OWNER));
        EXPECT_TRUE(IsWindowVisible(window));
        RECT client;
        GetClientRect(window, &client);
        const ControlRect wanted = Window().Pixels({0, 0, 281, 195});
        EXPECT_EQ(wanted.width, client.right);
        EXPECT_EQ(wanted.height, client.bottom);
        const LRESULT big = SendMessageW(window, WM_GETICON, ICON_BIG, 0);
        EXPECT_NE(0, big);
        EXPECT_NE(0, SendMessageW(window, WM_GETICON, ICON_SMALL, 0));
        EXPECT_EQ(big, SendMessageW(window, WM_QUERYDRAGICON, 0, 0));
        End();
    }});
}

TEST_F(DesktopTest, TellsTheDialogWhatItsUserDoes) {
    Run({
        [&] { Window().Press(kImportButton); },
        [&] { Window().Press(kDepthCheck); },
        [&] { Window().Press(kCloseButton); },
        [&] { PostMessageW(Window().Control(kImportButton), WM_KEYDOWN, VK_ESCAPE, 1); },
        [&] { Window().PostClose(); },
        [&] { SendMessageW(Window().Handle(), WM_SYSCOMMAND, SC_CLOSE, 0); },
        [&] { dialog_.window->PostClose(); },
        [&] { End(); },
    });
    EXPECT_EQ((Events{"init", "button 1006", "ok", "cancel", "cancel", "cancel", "cancel", "destroy"}), dialog_.events);
}

TEST_F(DesktopTest, KeepsCheckBoxesAndText) {
    dialog_.onInit = [&] {
        dialog_.window->SetChecked(kDepthCheck, true);
        dialog_.window->SetText(kFolderField, u"C:\\Deckm\u00E4n");
    };
    Run({[&] {
        EXPECT_TRUE(Window().Checked(kDepthCheck));
        EXPECT_FALSE(Window().Checked(kTrueCheck));
        Window().Press(kDepthCheck);
        Window().Press(kTrueCheck);
        EXPECT_FALSE(dialog_.window->Checked(kDepthCheck));
        EXPECT_TRUE(dialog_.window->Checked(kTrueCheck));
        EXPECT_EQ(u"C:\\Deckm\u00E4n", dialog_.window->Text(kFolderField));
        EXPECT_EQ(u"C:\\Deckm\u00E4n", Window().Text(kFolderField));
        End();
    }});
}

TEST_F(DesktopTest, TellsOfEachChangeOfTheFolderAtOnceEvenToTheSame) {
    Run({[&] {
        for (const char16_t* text : {u"C:\\A", u"C:\\A", u"", u""}) {
            dialog_.events.clear();
            dialog_.window->SetText(kFolderField, text);
            EXPECT_EQ(Events{"text 1000"}, dialog_.events);
        }
        dialog_.events.clear();
        Window().SetText(kFolderField, u"C:\\B");
        EXPECT_EQ(Events{"text 1000"}, dialog_.events);
        End();
    }});
}

TEST_F(DesktopTest, PutsAnItemBelowTheWindowsMenu) {
    dialog_.onInit = [&] { dialog_.window->AddMenuItem(16, u"&About Halyrig32..."); };
    Run({
        [&] {
            const HMENU menu = GetSystemMenu(Window().Handle(), FALSE);
            const int last = GetMenuItemCount(menu) - 1;
            wchar_t text[64] = {};
            GetMenuStringW(menu, static_cast<UINT>(last), text, 64, MF_BYPOSITION);
            EXPECT_STREQ(L"&About Halyrig32...", text);
            EXPECT_EQ(16u, GetMenuItemID(menu, last));
            EXPECT_NE(0u, GetMenuState(menu, static_cast<UINT>(last - 1), MF_BYPOSITION) & MF_SEPARATOR);
        },
        [&] { SendMessageW(Window().Handle(), WM_SYSCOMMAND, 16 | 3, 0); },
        [&] { SendMessageW(Window().Handle(), WM_SYSCOMMAND, 32, 0); },
        [&] { End(); },
    });
    EXPECT_EQ((Events{"init", "menu 16", "destroy"}), dialog_.events);
}

TEST_F(DesktopTest, GoesOnTickingWhileABoxIsOpenAndGivesItsAnswer) {
    const struct {
        int press;
        BoxAnswer answer;
    } rows[] = {{IDYES, BoxAnswer::kYes}, {IDNO, BoxAnswer::kNo}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.press);
        dialog_ = {};
        BoxAnswer answer = BoxAnswer::kNone;
        dialog_.onButton = [&] { answer = Ask(); };
        Run({
            [&] { Window().PostPress(kImportButton); },
            [&] { return Window().Popup().has_value(); },
            [&] {
                const auto box = Window().Popup();
                EXPECT_EQ(u"Question", box->Caption());
                EXPECT_FALSE(IsWindowEnabled(Window().Handle()));
                box->PostPress(row.press);
            },
            [&] { End(); },
        });
        EXPECT_EQ(row.answer, answer);
    }
}

TEST_F(DesktopTest, EndsWithWhateverBoxIsOpen) {
    const struct {
        const char* name;
        std::function<void()> open;
    } rows[] = {
        {"question", [this] { EXPECT_EQ(BoxAnswer::kNone, Ask()); }},
        {"two questions",
         [this] {
             Ask();
             EXPECT_EQ(BoxAnswer::kNone, Ask());
         }},
        {"message", [this] { desktop_.ShowBox(u"Text", u"Caption", BoxButtons::kOk, BoxIcon::kStop); }},
        {"about", [this] { desktop_.ShowAbout(kAbout, u"Halyrig32 v1.0.0"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        dialog_ = {};
        dialog_.onButton = row.open;
        dialog_.onCancel = [this] { End(); };
        Run({
            [&] { Window().PostPress(kImportButton); },
            [&] { return Window().Popup().has_value(); },
            [&] { dialog_.window->PostClose(); },
        });
        EXPECT_EQ((Events{"init", "button 1006", "cancel", "destroy"}), dialog_.events);
    }
}

TEST_F(DesktopTest, ShowsTheAboutBox) {
    dialog_.onButton = [&] { desktop_.ShowAbout(kAbout, u"Halyrig32 v1.0.0\n\nOne line"); };
    Run({
        [&] { Window().PostPress(kImportButton); },
        [&] { return Window().Popup().has_value(); },
        [&] {
            const auto box = Window().Popup();
            EXPECT_EQ(u"About Halyrig32", box->Caption());
            EXPECT_EQ(u"Halyrig32 v1.0.0\n\nOne line", box->Text(-1));
            EXPECT_EQ(u"OK", box->Text(IDOK));
            EXPECT_EQ(box->Pixels({12, 12, 174, 42}), box->Rect(-1));
            box->PostPress(IDOK);
        },
        [&] { return !Window().Popup(); },
        [&] { End(); },
    });
}

TEST_F(DesktopTest, OpensAndEndsAtOnceAfterAQuit) {
    desktop_.PostQuit();
    Run({[] { ADD_FAILURE() << "a tick after the quit"; }});
    EXPECT_EQ((Events{"init", "destroy"}), dialog_.events);

    dialog_ = {};
    Run({[&] { Window().Press(kImportButton); }, [&] { desktop_.PostQuit(); }});
    EXPECT_EQ((Events{"init", "button 1006", "destroy"}), dialog_.events) << "the quit holds for one dialog";
}

TEST_F(DesktopTest, EndsWithTheSessionWithoutAsking) {
    Run({
        [&] { EXPECT_TRUE(SendMessageW(Window().Handle(), WM_QUERYENDSESSION, 0, 0)); },
        [&] { SendMessageW(Window().Handle(), WM_ENDSESSION, FALSE, 0); },
        [&] {
            SendMessageW(Window().Handle(), WM_ENDSESSION, TRUE, 0);
            EXPECT_EQ("destroy", dialog_.events.back()) << "nothing may run after the message";
        },
    });
    EXPECT_EQ((Events{"init", "destroy"}), dialog_.events);
}

TEST_F(DesktopTest, HasAButtonForTheFolderAtTheRightEndOfItsField) {
    Run({[&] {
        const HWND field = Window().Control(kFolderField);
        const HWND button = GetWindow(field, GW_CHILD);
        RECT fieldRect, buttonRect;
        GetClientRect(field, &fieldRect);
        GetWindowRect(button, &buttonRect);
        MapWindowPoints(nullptr, field, reinterpret_cast<POINT*>(&buttonRect), 2);
        EXPECT_EQ(fieldRect.right, buttonRect.right);
        EXPECT_EQ(fieldRect.bottom, buttonRect.bottom);
        EXPECT_EQ(buttonRect.right - buttonRect.left, HIWORD(SendMessageW(field, EM_GETMARGINS, 0, 0)));
        End();
    }});
}

TEST_F(DesktopTest, BrowsesForAFolderByMouseAndByKeyAndEndsMeanwhile) {
    const struct {
        const char* name;
        std::function<void(HWND)> open;
    } rows[] = {
        {"button", [](HWND field) { PostMessageW(GetWindow(field, GW_CHILD), BM_CLICK, 0, 0); }},
        {"F4", [](HWND field) { PostMessageW(field, WM_KEYDOWN, VK_F4, 1); }},
        {"space", [](HWND field) { PostMessageW(field, WM_KEYDOWN, VK_SPACE, 1); }},
        {"Alt and down", [](HWND field) { PostMessageW(field, WM_SYSKEYDOWN, VK_DOWN, 1 | 1 << 29); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        dialog_ = {};
        dialog_.onCancel = [this] { End(); };
        dialog_.onInit = [&] { dialog_.window->SetText(kFolderField, u"C:\\"); };
        Run({
            [&] { row.open(Window().Control(kFolderField)); },
            [&] { return Window().Popup().has_value(); },
            [&] { dialog_.window->PostClose(); },
        });
        EXPECT_EQ((Events{"init", "text 1000", "cancel", "destroy"}), dialog_.events);
    }
}

// Into the field of the shell's box, whatever its number is.
BOOL CALLBACK TypeFolder(HWND child, LPARAM) {
    if (ClassOf(child) == WC_EDITW && IsWindowVisible(child)) {
        SendMessageW(child, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"C:\\windows"));
    }
    return TRUE;
}

TEST_F(DesktopTest, TakesThePickedFolderIntoItsFieldEvenIfItIsTheSame) {
    for (const char16_t* shown : {u"C:\\no such folder", u"C:\\windows"}) {
        dialog_ = {};
        dialog_.onInit = [&] { dialog_.window->SetText(kFolderField, shown); };
        Run({
            [&] { PostMessageW(Window().Control(kFolderField), WM_KEYDOWN, VK_F4, 1); },
            [&] { return Window().Popup().has_value(); },
            [&] {
                EnumChildWindows(Window().Popup()->Handle(), TypeFolder, 0);
                Window().Popup()->PostPress(IDOK);
            },
            [&] { return !Window().Popup(); },
            [&] {
                EXPECT_EQ(u"C:\\windows", dialog_.window->Text(kFolderField));
                End();
            },
        });
        EXPECT_EQ((Events{"init", "text 1000", "text 1000", "destroy"}), dialog_.events);
    }
}

}  // namespace
}  // namespace twr
