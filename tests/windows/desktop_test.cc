// SPDX-License-Identifier: MIT
// The window host, showing the dialogs among the product's resources. What a user of the product sees is in product_test.cc.

#include <gtest/gtest.h>

#include <algorithm>

#include "base/wide_text.h"
#include "bridge/controls.h"
#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"
#include "support/child_process.h"
#include "support/scripted_dialog.h"
#include "support/windows/window_probe.h"

namespace twr {
namespace {

using testing::WindowProbe;

constexpr UINT kSameTime = 10;  // milliseconds from tick to tick

// What a test does on a tick; taken again on the next one until it gives true: a window may need more than one to open or to go.
using Step = std::function<bool()>;

Step Once(std::function<void()> action) {
    return [action] { return action(), true; };
}

struct DesktopTest : ::testing::Test {
    // Runs a dialog and gives its events; `steps` come one by one, each from a tick of its own, so that all that was posted before
    // has arrived. At the end of the last one the dialog ends.
    std::string Run(std::vector<Step> steps, std::function<void()> onInit = {}, std::function<void()> onButton = {}) {
        dialog_ = {};
        dialog_.onButton = std::move(onButton);
        dialog_.onCancel = [this] { End(); };
        dialog_.onTimer = [&, next = std::size_t{0}]() mutable {
            if (next < steps.size() && steps[next]() && ++next == steps.size()) End();
        };
        dialog_.onInit = [&] {
            if (onInit) onInit();
            dialog_.window->StartTimer(1, kSameTime);
        };
        desktop_.RunDialog(kMainTemplate, dialog_);
        EXPECT_FALSE(WindowProbe::Find(kProgramName, GetCurrentProcessId())) << "a window is left";
        std::string events;
        for (const std::string& event : dialog_.events) events += event + ' ';
        return events;
    }

    static WindowProbe Window() { return *WindowProbe::Find(kProgramName, GetCurrentProcessId()); }
    static void Send(UINT message, WPARAM word, LPARAM data = 0) { SendMessageW(Window().Handle(), message, word, data); }
    static void Key(int control, UINT message, WPARAM key, LPARAM data = 1) {
        PostMessageW(Window().Control(control), message, key, data);
    }
    void End() { dialog_.window->End(DialogResult::kOk); }

    static constexpr DialogTemplate kAbout{100, u"About Halyrig32", 197, 93, {}};
    const std::function<void()> item_ = [this] { dialog_.window->AddMenuItem(16, u"&About Halyrig32..."); };
    const Step press_ = Once([] { Window().PostPress(kImportButton); });
    const Step popup_ = [] { return Window().Popup().has_value(); };
    const Step gone_ = [] { return !Window().Popup(); };

    const std::unique_ptr<Desktop> owned_ = MakeDesktop();
    Desktop& desktop_ = *owned_;
    testing::ScriptedDialog dialog_;
};

std::wstring ClassOf(HWND window) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    return name;
}

TEST_F(DesktopTest, ShowsItsControlsInTheirPlacesInAWindowThatCanBeSizedAndMinimised) {
    constexpr LONG kButton = BS_TYPEMASK | WS_TABSTOP, kField = ES_READONLY | ES_MULTILINE | WS_TABSTOP;
    const struct {
        ControlKind kind;
        const wchar_t* windowClass;
        LONG style, mask;
    } looks[] = {{ControlKind::kDefaultButton, WC_BUTTONW, BS_DEFPUSHBUTTON | WS_TABSTOP, kButton},
                 {ControlKind::kPushButton, WC_BUTTONW, BS_PUSHBUTTON | WS_TABSTOP, kButton},
                 {ControlKind::kCheckBox, WC_BUTTONW, BS_AUTOCHECKBOX | WS_TABSTOP, kButton},
                 {ControlKind::kLabel, WC_STATICW, SS_LEFT, SS_TYPEMASK | WS_TABSTOP},
                 {ControlKind::kFolderField, WC_EDITW, ES_READONLY | WS_TABSTOP, kField}};
    const auto check = [&] {
        const WindowProbe window = Window();
        std::vector<int> order;
        for (const ControlTemplate& wanted : kMainControls) {
            SCOPED_TRACE(wanted.id);
            order.push_back(wanted.id);
            const HWND control = window.Control(wanted.id);
            const auto& look = *std::ranges::find(looks, wanted.kind, [](const auto& row) { return row.kind; });
            EXPECT_EQ(look.windowClass, ClassOf(control));
            EXPECT_EQ(look.style, GetWindowLongW(control, GWL_STYLE) & look.mask);
            EXPECT_TRUE(IsWindowVisible(control));
            EXPECT_EQ(std::u16string(wanted.caption), window.Text(wanted.id));
            EXPECT_EQ(window.Pixels(wanted.rect), window.Rect(wanted.id));
        }
        EXPECT_EQ(order, window.TabOrder());

        const HWND handle = window.Handle(), field = window.Control(kFolderField), button = GetWindow(field, GW_CHILD);
        constexpr LONG kWanted = WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX;
        EXPECT_EQ(kWanted, GetWindowLongW(handle, GWL_STYLE) & (kWanted | WS_MAXIMIZEBOX));
        EXPECT_NE(0, GetWindowLongW(handle, GWL_EXSTYLE) & WS_EX_APPWINDOW);
        EXPECT_EQ(nullptr, GetWindow(handle, GW_OWNER));
        EXPECT_TRUE(IsWindowVisible(handle));
        RECT client, inField, ofButton;
        GetClientRect(handle, &client);
        const ControlRect wanted = window.Pixels({0, 0, 281, 195});
        EXPECT_TRUE(wanted.width == client.right && wanted.height == client.bottom) << client.right << 'x' << client.bottom;
        const LRESULT big = SendMessageW(handle, WM_GETICON, ICON_BIG, 0);
        EXPECT_TRUE(big != 0 && big == SendMessageW(handle, WM_QUERYDRAGICON, 0, 0));
        EXPECT_NE(0, SendMessageW(handle, WM_GETICON, ICON_SMALL, 0));

        GetClientRect(field, &inField);
        GetWindowRect(button, &ofButton);
        MapWindowPoints(nullptr, field, reinterpret_cast<POINT*>(&ofButton), 2);
        EXPECT_TRUE(inField.right == ofButton.right && inField.bottom == ofButton.bottom) << "at the right end of its field";
        EXPECT_EQ(ofButton.right - ofButton.left, HIWORD(SendMessageW(field, EM_GETMARGINS, 0, 0)));

        const HMENU menu = GetSystemMenu(handle, FALSE);
        const int last = GetMenuItemCount(menu) - 1;
        wchar_t text[64] = {};
        GetMenuStringW(menu, static_cast<UINT>(last), text, 64, MF_BYPOSITION);
        EXPECT_STREQ(L"&About Halyrig32...", text);
        EXPECT_EQ(16u, GetMenuItemID(menu, last));
        EXPECT_NE(0u, GetMenuState(menu, static_cast<UINT>(last - 1), MF_BYPOSITION) & MF_SEPARATOR);
    };
    Run({Once(check)}, item_);
}

TEST_F(DesktopTest, TellsTheDialogWhatItsUserDoes) {
    const std::tuple<const char*, std::function<void()>, const char*> rows[] = {
        {"button", [] { Window().Press(kImportButton); }, "button 1006 "},
        {"check box", [] { Window().Press(kDepthCheck); }, ""},
        {"default button", [] { Window().Press(kCloseButton); }, "ok "},
        {"Esc", [] { Key(kImportButton, WM_KEYDOWN, VK_ESCAPE); }, "cancel "},
        {"close", [] { Window().PostClose(); }, "cancel "},
        {"close by the menu", [] { Send(WM_SYSCOMMAND, SC_CLOSE); }, "cancel "},
        {"close from within", [this] { dialog_.window->PostClose(); }, "cancel "},
        {"menu", [] { Send(WM_SYSCOMMAND, 16 | 3); }, "menu 16 "},
        {"no item of its own", [] { Send(WM_SYSCOMMAND, 32); }, ""},
        {"folder", [this] { dialog_.window->SetText(kFolderField, u"C:\\A"); }, "text 1000 "},
        {"the same", [this] { dialog_.window->SetText(kFolderField, u"C:\\A"); }, "text 1000 "},
        {"no folder", [this] { dialog_.window->SetText(kFolderField, u""); }, "text 1000 "},
        {"none again", [this] { dialog_.window->SetText(kFolderField, u""); }, "text 1000 "}};
    for (const auto& [what, action, told] : rows)
        EXPECT_EQ("init " + std::string(told) + "destroy ", Run({Once(action), Once([] {})}, item_)) << what;
    const auto endOfSession = [this] {
        EXPECT_TRUE(SendMessageW(Window().Handle(), WM_QUERYENDSESSION, 0, 0));
        Send(WM_ENDSESSION, FALSE);
        EXPECT_EQ("init", dialog_.events.back()) << "another program has kept the session";
        Send(WM_ENDSESSION, TRUE);
        EXPECT_EQ("destroy", dialog_.events.back()) << "nothing may run after the message";
    };
    EXPECT_EQ("init destroy ", Run({Once(endOfSession), Once([] {})}));

    desktop_.PostQuit();
    EXPECT_EQ("init destroy ", Run({Once([] { ADD_FAILURE() << "a tick after the quit"; })}));
    const auto quit = [this] { Window().Press(kImportButton), desktop_.PostQuit(); };
    EXPECT_EQ("init button 1006 destroy ", Run({Once(quit), [] { return false; }})) << "a quit holds for one dialog";
}

TEST_F(DesktopTest, ShowsTheTextOfTheAboutBoxInItsPlace) {
    const auto look = [] {
        const auto box = Window().Popup();
        EXPECT_EQ(u"One line\n\nanother", box->Text(-1));
        EXPECT_EQ(box->Pixels({12, 12, 174, 42}), box->Rect(-1));
        EXPECT_EQ(u"OK", box->Text(IDOK));
        box->PostPress(IDOK);
    };
    Run({press_, popup_, Once(look), gone_}, {}, [this] { desktop_.ShowAbout(kAbout, u"One line\n\nanother"); });
}

TEST_F(DesktopTest, EndsWithWhateverIsOpen) {
    const auto close = [this] { dialog_.window->PostClose(); };
    const auto ask = [this] { return desktop_.ShowBox(u"Exit?", u"Question", BoxButtons::kYesNo, BoxIcon::kQuestion); };
    const auto never = [] { return false; };
    const std::tuple<const char*, Step, std::function<void()>> rows[] = {
        {"a question and another", press_, [&] { EXPECT_TRUE(ask() == BoxAnswer::kNone && ask() == BoxAnswer::kNone); }},
        {"message", press_, [this] { desktop_.ShowBox(u"Text", u"Caption", BoxButtons::kOk, BoxIcon::kStop); }},
        {"about", press_, [&] { desktop_.ShowAbout(kAbout, u"Halyrig32 v1.0.0"); }},
        {"folders", Once([] { PostMessageW(GetWindow(Window().Control(kFolderField), GW_CHILD), BM_CLICK, 0, 0); }), {}},
        {"folders by F4", Once([] { Key(kFolderField, WM_KEYDOWN, VK_F4); }), {}},
        {"folders by space", Once([] { Key(kFolderField, WM_KEYDOWN, VK_SPACE); }), {}},
        {"folders by Alt and down", Once([] { Key(kFolderField, WM_SYSKEYDOWN, VK_DOWN, 1 | 1 << 29); }), {}}};
    for (const auto& [name, open, shown] : rows) {
        const std::string events = Run({open, popup_, Once(close), never}, {}, shown);
        EXPECT_EQ(shown ? "init button 1006 cancel destroy " : "init cancel destroy ", events) << name;
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
        const auto pick = [] {
            EnumChildWindows(Window().Popup()->Handle(), TypeFolder, 0);
            Window().Popup()->PostPress(IDOK);
        };
        const auto taken = [this] { EXPECT_EQ(u"C:\\windows", dialog_.window->Text(kFolderField)); };
        EXPECT_EQ("init text 1000 text 1000 destroy ",
                  Run({Once([] { Key(kFolderField, WM_KEYDOWN, VK_F4); }), popup_, Once(pick), gone_, Once(taken)},
                      [&] { dialog_.window->SetText(kFolderField, shown); }));
    }
}

// The console.

constexpr UINT kWestern = 850;

UniqueHandle OpenConsole(const wchar_t* name) {
    return UniqueHandle(NullIfInvalid(
        CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)));
}

// The first line of the screen that is seen now.
std::string SeenLine() {
    const UniqueHandle active = OpenConsole(L"CONOUT$");
    wchar_t line[9] = L"";
    DWORD count = 0;
    ReadConsoleOutputCharacterW(active.get(), line, 8, {0, 0}, &count);
    return ToUtf8(Trimmed(std::u16string_view(FromWide(line))));
}

// In a console of its own, which is that of a western command prompt.
const testing::Role kConsole("console", [](const std::vector<std::string>&) {
    FreeConsole();
    if (!AllocConsole()) return 2;
    const UniqueHandle keyboard = OpenConsole(L"CONIN$"), output = OpenConsole(L"CONOUT$");
    const HANDLE pipe = GetStdHandle(STD_OUTPUT_HANDLE);
    SetStdHandle(STD_INPUT_HANDLE, keyboard.get());
    SetStdHandle(STD_OUTPUT_HANDLE, output.get());
    SetConsoleOutputCP(kWestern);
    DWORD before = 0, after = 0;
    GetConsoleMode(keyboard.get(), &before);
    std::string during;
    {
        const std::unique_ptr<Console> console = MakeConsole();
        const auto screen = console->TakeScreen();
        INPUT_RECORD q{};
        q.EventType = KEY_EVENT;
        q.Event.KeyEvent.bKeyDown = TRUE;
        q.Event.KeyEvent.uChar.UnicodeChar = L'q';
        DWORD count = 0;
        WriteConsoleInputW(keyboard.get(), &q, 1, &count);
        screen->Draw({{0, 0, "6.5 kt"}});
        const bool typed = screen->Wait(1000) == U'q';
        for (int i = 0; i < 100 && SeenLine().empty(); ++i) screen->Wait(10);  // another thread draws
        during = std::to_string(GetConsoleOutputCP()) + (typed ? " q " : " - ") + SeenLine();
    }
    GetConsoleMode(keyboard.get(), &after);
    SetStdHandle(STD_OUTPUT_HANDLE, pipe);
    const std::string text = during + ", then " + std::to_string(GetConsoleOutputCP()) + SeenLine() +
                             (before == after ? "" : " with another mode") + "\n";
    DWORD written = 0;
    WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    return 0;
});

TEST(WindowsConsole, ShowsAPictureTakesAKeyAndGivesTheConsoleBackAsItWas) {
    EXPECT_EQ("65001 q 6.5 kt, then 850", testing::StartRole("console", {})->ReadLine());
}

}  // namespace
}  // namespace twr
