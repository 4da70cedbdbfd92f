// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/screen.h"

#include <curses.h>
#include <signal.h>
#include <sys/mman.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "base/wide_text.h"
#include "platform/linux/terminal/text.h"

// Names that the library's headers define as macros.
#undef columns
#undef lines

namespace twr {
namespace {

// A lone Esc waits this long for the rest of a key's sequence, which a slow line may bring in pieces.
constexpr int kEscapeDelayMs = 50;

constexpr wint_t kDelete = 127;  // what the Backspace key sends on most terminals

// The library sets handlers of its own for these. They are events of the host's loop instead.
constexpr std::array kHandled = {SIGINT, SIGTERM, SIGTSTP, SIGWINCH};

SCREEN* NewTerminal(std::FILE* to) {
    std::array<struct sigaction, kHandled.size()> before{};
    for (std::size_t i = 0; i < before.size(); ++i) sigaction(kHandled[i], nullptr, &before[i]);
    use_env(FALSE);  // the size is the device's
    SCREEN* const made = newterm(nullptr, to, stdin);
    for (std::size_t i = 0; i < before.size(); ++i) sigaction(kHandled[i], &before[i], nullptr);
    return made;
}

char32_t KeyOfCode(wint_t code) {
    static constexpr struct {
        wint_t code;
        Key::Code key;
    } kKeys[] = {{KEY_BTAB, Key::kBackTab},       {KEY_UP, Key::kUp},        {KEY_DOWN, Key::kDown},      {KEY_LEFT, Key::kLeft},
                 {KEY_RIGHT, Key::kRight},        {KEY_PPAGE, Key::kPageUp}, {KEY_NPAGE, Key::kPageDown}, {KEY_ENTER, Key::kEnter},
                 {KEY_HOME, Key::kHome},          {KEY_FIND, Key::kHome},    {KEY_END, Key::kEnd},        {KEY_SELECT, Key::kEnd},
                 {KEY_BACKSPACE, Key::kBackspace}};
    if (code >= KEY_F(1) && code <= KEY_F(12)) return Key::kF1 + (code - KEY_F(1));
    const auto* const found = std::ranges::find(kKeys, code, [](const auto& row) { return row.code; });
    return found == std::end(kKeys) ? Key::kOther : found->key;
}

void Put(int row, int column, const std::wstring& text, attr_t attributes = A_NORMAL) {
    attrset(static_cast<int>(attributes));
    mvaddwstr(row, column, text.c_str());
    attrset(A_NORMAL);
}

// The library's pairs of colours: these on the terminal's own background.
constexpr std::pair<Look, short> kColours[] = {{Look::kGreen, COLOR_GREEN}, {Look::kYellow, COLOR_YELLOW}, {Look::kRed, COLOR_RED}};

// Users who want no colours set NO_COLOR.
void TakeColours() {
    const char* const none = std::getenv("NO_COLOR");
    if ((none && *none) || !has_colors() || start_color() != OK || use_default_colors() != OK) return;
    for (const auto& [look, colour] : kColours) init_pair(static_cast<short>(look), colour, -1);
}

attr_t AttributesOf(Look look) {
    switch (look) {
        case Look::kPlain:
            return A_NORMAL;
        case Look::kBold:
            return A_BOLD;
        case Look::kFaint:
            return A_DIM;
        case Look::kReversed:
            return A_REVERSE;
        default:
            return COLOR_PAIR(static_cast<int>(look));
    }
}

}  // namespace

// A library that is loaded while the screen is up can call this too, so the current terminal is restored.
bool TerminalCanShowScreens() {
    TERMINAL* const before = cur_term;
    int error = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &error) != OK) return false;
    const char* const place = tigetstr("cup");
    const bool places = place && place != reinterpret_cast<const char*>(-1) && *place;
    del_curterm(set_curterm(before));
    return places;
}

TerminalScreen::TerminalScreen() : picture_(fdopen(memfd_create("picture", MFD_CLOEXEC), "w")) {
    const TerminalLocale locale;
    if (!device_ || !picture_) return;
    screen_ = NewTerminal(picture_);
    if (!screen_) return;
    TakeSize();
    typeahead(-1);
    set_escdelay(kEscapeDelayMs);
    TakeColours();
    curs_set(0);
    keys_ = newpad(1, 1);  // reading from a pad never draws
    keypad(keys_, TRUE);
    nodelay(keys_, TRUE);
    // The screen is entered and left once, which yields the text that leaves it; with the first picture the library enters it
    // again. What it writes only once comes with the first time.
    refresh();
    const std::string enter = TakePicture();
    endwin();
    const std::string leave = TakePicture();
    device_.WriteAtEnd(leave);
    device_.Write(enter + leave);
    keypad(keys_, TRUE);
}

TerminalScreen::~TerminalScreen() {
    if (screen_) {
        delwin(keys_);
        delscreen(screen_);
    }
    if (picture_) std::fclose(picture_);
}

// Alt and a key come as an Esc with the key right behind it: that is not a request to leave.
std::optional<char32_t> TerminalScreen::Read() {
    const TerminalLocale locale;
    wint_t read = 0, behind = 0;
    const int kind = wget_wch(keys_, &read);
    if (kind == ERR) return std::nullopt;
    if (kind == KEY_CODE_YES) return KeyOfCode(read);
    if (read == Key::kEscape && wget_wch(keys_, &behind) != ERR) return KeyOfSequence(behind);
    if (read == kDelete) return Key::kBackspace;
    return read == L'\n' ? U'\r' : static_cast<char32_t>(read);
}

// The rest of a sequence that the library does not know for this terminal. Function keys have one of three forms at all of them.
char32_t TerminalScreen::KeyOfSequence(char32_t first) {
    std::string rest;
    for (wint_t next = 0; (first == U'[' || first == U'O') && wget_wch(keys_, &next) != ERR;) {
        rest += static_cast<char>(next);
        if (next >= U'@' && next <= U'~' && rest != "[") break;
    }
    static constexpr std::string_view kNumbered[] = {"11~", "12~", "13~", "14~", "15~", "17~",
                                                     "18~", "19~", "20~", "21~", "23~", "24~"};
    if (first == U'O' && rest.size() == 1 && rest[0] >= 'P' && rest[0] <= 'S')
        return Key::kF1 + static_cast<char32_t>(rest[0] - 'P');
    if (rest.size() == 2 && rest[0] == '[' && rest[1] >= 'A' && rest[1] <= 'E')
        return Key::kF1 + static_cast<char32_t>(rest[1] - 'A');
    const auto number = std::ranges::find(kNumbered, rest);
    return number == std::end(kNumbered) ? char32_t{Key::kOther} : Key::kF1 + static_cast<char32_t>(number - kNumbered);
}

void TerminalScreen::TakeSize() {
    const TerminalLocale locale;
    const CellSize size = device_.Size();
    resizeterm(size.rows, size.columns);
}

void TerminalScreen::Redraw() { clearok(curscr, TRUE); }

CellSize TerminalScreen::Size() const { return {getmaxy(stdscr), getmaxx(stdscr)}; }

CellSize TerminalScreen::Area() const { return {Size().rows - 1, Size().columns}; }

void TerminalScreen::Show(const std::vector<Panel>& panels) {
    const TerminalLocale locale;
    erase();
    for (const Panel& panel : panels) Draw(panel, &panel == &panels.back());
    int column = 1;
    for (const std::wstring& hint : panels.back().hints) {
        if (column + WidthOf(hint) >= Area().columns) break;
        Put(Area().rows, column, hint);
        column += WidthOf(hint) + 2;
    }
    Finish();
}

void TerminalScreen::Show(const std::vector<ScreenText>& texts) {
    const TerminalLocale locale;
    erase();
    for (const ScreenText& text : texts) {
        const int room = Size().columns - text.column;
        if (text.row < Size().rows && room > 0)
            Put(text.row, text.column, Beginning(Printable(FromUtf8(text.text)), room), AttributesOf(text.look));
    }
    Finish();
}

void TerminalScreen::Finish() {
    refresh();
    device_.Write(TakePicture());
}

void TerminalScreen::Draw(const Panel& panel, bool topmost) {
    const int top = std::max(0, (Area().rows - panel.size.rows) / 2), left = std::max(0, (Area().columns - panel.size.columns) / 2);
    WINDOW* const box = derwin(stdscr, panel.size.rows, panel.size.columns, top, left);
    if (box) {
        werase(box);
        box_set(box, WACS_VLINE, WACS_HLINE);
        delwin(box);
    }
    if (!panel.caption.empty()) Put(top, left + 2, L' ' + panel.caption + L' ', A_BOLD);
    for (const Panel::Part& part : panel.parts) {
        Put(top + part.row, left + part.column, part.text, topmost && part.focused ? A_REVERSE : A_NORMAL);
    }
}

// If the library wrote to the terminal itself, it would block until that accepts the output, and so would the ticks.
std::string TerminalScreen::TakePicture() {
    const int file = fileno(picture_);
    std::string bytes(static_cast<std::size_t>(std::max<off_t>(0, lseek(file, 0, SEEK_CUR))), '\0');
    const ssize_t got = pread(file, bytes.data(), bytes.size(), 0);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(0, got)));
    [[maybe_unused]] const bool emptied = ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0;
    return bytes;
}

}  // namespace twr
