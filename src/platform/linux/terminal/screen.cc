#include "platform/linux/terminal/screen.h"

#include <curses.h>
#include <signal.h>
#include <sys/mman.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/linux/terminal/text.h"

// Names that the library's headers define as macros.
#undef columns
#undef lines

namespace twr {
namespace {

// A lone Esc waits this long for the rest of a key's sequence, which a slow line may bring in pieces.
constexpr int kEscapeDelayMs = 50;

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
        Key key;
    } kKeys[] = {{KEY_BTAB, kBackTab}, {KEY_UP, kUp},        {KEY_DOWN, kDown},      {KEY_LEFT, kLeft},
                 {KEY_RIGHT, kRight},  {KEY_PPAGE, kPageUp}, {KEY_NPAGE, kPageDown}, {KEY_ENTER, kEnter}};
    if (code >= KEY_F(1) && code <= KEY_F(12)) return kF1 + (code - KEY_F(1));
    const auto* const found = std::ranges::find(kKeys, code, [](const auto& row) { return row.code; });
    return found == std::end(kKeys) ? kOther : found->key;
}

void Put(int row, int column, const std::wstring& text, attr_t attributes = A_NORMAL) {
    attrset(static_cast<int>(attributes));
    mvaddwstr(row, column, text.c_str());
    attrset(A_NORMAL);
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
    if (read == kEscape && wget_wch(keys_, &behind) != ERR) return kOther;
    return read == L'\n' ? U'\r' : static_cast<char32_t>(read);
}

void TerminalScreen::TakeSize() {
    const TerminalLocale locale;
    const CellSize size = device_.Size();
    resizeterm(size.rows, size.columns);
}

void TerminalScreen::Redraw() { clearok(curscr, TRUE); }

CellSize TerminalScreen::Area() const { return {getmaxy(stdscr) - 1, getmaxx(stdscr)}; }

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
