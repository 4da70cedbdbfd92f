#include "platform/linux/terminal_screen.h"

#include <curses.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "platform/linux/terminal_restore.h"

// Names that the library's headers make macros of.
#undef columns
#undef lines
#undef newline

namespace twr {
namespace {

// A lone Esc waits this long for the rest of a key's sequence, which a slow line may bring in pieces.
constexpr int kEscapeDelayMs = 50;
constexpr int kEscape = 27;
constexpr int kCtrlL = 12;
constexpr short kAlarmPair = 1;

// Behind an event that is not wanted the library would wait for another one, and the ticks with it: so all are.
constexpr mmask_t kMouseEvents = BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON2_PRESSED | BUTTON2_RELEASED | BUTTON3_PRESSED |
                                 BUTTON3_RELEASED | BUTTON4_PRESSED | BUTTON5_PRESSED;

// The library sets handlers of its own for these. They are events of the host's loop instead.
constexpr int kHandled[] = {SIGINT, SIGTERM, SIGTSTP, SIGWINCH};

SCREEN* NewTerminal() {
    struct sigaction before[std::size(kHandled)];
    for (std::size_t i = 0; i < std::size(kHandled); ++i) sigaction(kHandled[i], nullptr, &before[i]);
    SCREEN* const made = newterm(nullptr, stdout, stdin);
    for (std::size_t i = 0; i < std::size(kHandled); ++i) sigaction(kHandled[i], &before[i], nullptr);
    return made;
}

// A capability as it is sent, without the pauses that old terminals needed.
std::string Sequence(const char* capability) {
    const char* text = tigetstr(capability);
    std::string sequence = text && text != reinterpret_cast<const char*>(-1) ? text : "";
    for (std::size_t pause; (pause = sequence.find("$<")) != sequence.npos;) {
        const std::size_t end = sequence.find('>', pause);
        sequence.erase(pause, end == sequence.npos ? end : end - pause + 1);
    }
    return sequence;
}

std::string LeaveSequence() {
    const std::string mouseOff = Sequence("kmous").empty() ? "" : "\033[?1000l\033[?1006l";
    return Sequence("sgr0") + mouseOff + Sequence("rmkx") + Sequence("cnorm") + Sequence("rmcup");
}

attr_t AttributesOf(Style style) {
    switch (style) {
        case Style::kStrong:
            return A_BOLD;
        case Style::kFocus:
            return A_REVERSE;
        case Style::kField:
            return A_UNDERLINE;
        case Style::kAlarm:
            return A_BOLD | (has_colors() ? static_cast<attr_t>(COLOR_PAIR(kAlarmPair)) : A_NORMAL);
        default:
            return A_NORMAL;
    }
}

void Put(WINDOW* window, Cell at, std::wstring_view text, Style style) {
    wattrset(window, static_cast<int>(AttributesOf(style)));
    mvwaddnwstr(window, at.row, at.column, text.data(), static_cast<int>(text.size()));
    wattrset(window, A_NORMAL);
}

Cell Centred(CellSize area, CellSize size) {
    return {std::max(0, (area.rows - size.rows) / 2), std::max(0, (area.columns - size.columns) / 2)};
}

Key KeyOfCode(int code) {
    static constexpr struct {
        int code;
        Key key;
    } kKeys[] = {
        {KEY_BTAB, Key::kBackTab},        {KEY_UP, Key::kUp},       {KEY_DOWN, Key::kDown},
        {KEY_LEFT, Key::kLeft},           {KEY_RIGHT, Key::kRight}, {KEY_PPAGE, Key::kPageUp},
        {KEY_NPAGE, Key::kPageDown},      {KEY_HOME, Key::kHome},   {KEY_END, Key::kEnd},
        {KEY_ENTER, Key::kEnter},         {KEY_F(1), Key::kMenu},   {KEY_F(10), Key::kMenu},
        {KEY_BACKSPACE, Key::kBackspace},
    };
    const auto* const found = std::ranges::find(kKeys, code, [](const auto& row) { return row.code; });
    return found == std::end(kKeys) ? Key::kOther : found->key;
}

// What is not listed means nothing here.
std::optional<Input> InputOfMouse(const MEVENT& event) {
    if (event.bstate & BUTTON4_PRESSED) return Input{Key::kUp};
    if (event.bstate & BUTTON5_PRESSED) return Input{Key::kDown};
    if (event.bstate & BUTTON1_PRESSED) return Input{Key::kPress, 0, {event.y, event.x}};
    return std::nullopt;
}

Input InputOfCharacter(wint_t character) {
    switch (character) {
        case L'\t':
            return {Key::kTab};
        case L'\r':
        case L'\n':
            return {Key::kEnter};
        case L'\b':
        case 127:
            return {Key::kBackspace};
        case kCtrlL:
            return {Key::kRedraw};
        default:
            return character < L' ' ? Input{Key::kOther} : Input{Key::kCharacter, static_cast<char32_t>(character)};
    }
}

}  // namespace

// A library that is loaded while the screen is up can ask too: what the screen is drawn by must stay.
bool TerminalCanShowScreens() {
    TERMINAL* const before = cur_term;
    int error = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &error) != OK) return false;
    const bool placesCursor = !Sequence("cup").empty();
    del_curterm(set_curterm(before));
    return placesCursor;
}

bool TerminalIsOurs() { return tcgetpgrp(STDIN_FILENO) == getpgrp(); }

TerminalScreen::TerminalScreen() {
    const TerminalLocale locale;
    NoteTerminalModes();
    screen_ = NewTerminal();
    if (!screen_) return;
    ArmTerminalRestore(LeaveSequence());
    cbreak();
    noecho();
    Restrain();
    set_escdelay(kEscapeDelayMs);
    curs_set(0);
    if (has_colors()) {
        start_color();
        use_default_colors();
        init_pair(kAlarmPair, COLOR_RED, -1);
    }
    mouseinterval(0);  // a press counts when the button goes down
    mousemask(kMouseEvents, nullptr);
    keys_ = newpad(1, 1);  // reading from a pad never draws
    keypad(keys_, TRUE);
    nodelay(keys_, TRUE);
}

// In the background the shell has the terminal and has set it to its own liking.
TerminalScreen::~TerminalScreen() {
    if (!screen_) return;
    const TerminalLocale locale;
    if (TerminalIsOurs()) {
        werase(stdscr);  // some terminals keep what stood here when the window has grown
        wrefresh(stdscr);
        endwin();
    }
    DisarmTerminalRestore();
    delwin(keys_);
    delscreen(screen_);
}

// A stray Ctrl-S would stop the terminal's output, and with the next picture the ticks.
void TerminalScreen::Restrain() {
    termios modes{};
    tcgetattr(STDIN_FILENO, &modes);
    modes.c_iflag &= ~static_cast<tcflag_t>(IXON);
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    def_prog_mode();
}

// Several events can stand behind one notice; the library gives the newest first.
void TerminalScreen::TakeMouseEvents() {
    MEVENT event{};
    while (getmouse(&event) == OK) {
        if (const auto input = InputOfMouse(event)) mouse_.push_back(*input);
    }
}

std::optional<Input> TerminalScreen::Read() {
    const TerminalLocale locale;
    wint_t read = 0;
    int kind = OK;
    while (mouse_.empty() && (kind = wget_wch(keys_, &read)) == KEY_CODE_YES && read == KEY_MOUSE) TakeMouseEvents();
    if (!mouse_.empty()) {
        const Input oldest = mouse_.back();
        mouse_.pop_back();
        return oldest;
    }
    if (kind == ERR) return std::nullopt;
    if (kind == KEY_CODE_YES) return Input{KeyOfCode(static_cast<int>(read))};
    if (read != kEscape) return InputOfCharacter(read);
    // Alt and a key come as an Esc with the key right behind it: that is no wish to leave.
    if (wget_wch(keys_, &read) == ERR) return Input{Key::kEscape};
    return Input{Key::kOther};
}

void TerminalScreen::Resize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) return;
    const TerminalLocale locale;
    resizeterm(size.ws_row, size.ws_col);
}

void TerminalScreen::Redraw() { clearok(curscr, TRUE); }

Frame::Frame() {
    werase(stdscr);
    wnoutrefresh(stdscr);
}

Frame::~Frame() { doupdate(); }

CellSize Frame::Size() const { return {getmaxy(stdscr), getmaxx(stdscr)}; }

void Frame::Text(Cell at, std::wstring_view text, Style style) {
    Put(stdscr, at, text, style);
    wnoutrefresh(stdscr);
}

Pane::Pane(CellSize area, CellSize size, std::wstring_view caption, Style frame)
    : Pane(Centred(area, size), size, caption, frame) {}

Pane::Pane(Cell at, CellSize size, std::wstring_view caption, Style frame)
    : at_(at), window_(newwin(size.rows, size.columns, at.row, at.column)) {
    if (!window_) return;
    wattrset(window_, static_cast<int>(AttributesOf(frame)));
    box_set(window_, WACS_VLINE, WACS_HLINE);
    wattrset(window_, A_NORMAL);
    if (!caption.empty()) Put(window_, {0, 2}, L' ' + std::wstring(caption) + L' ', Style::kStrong);
}

Pane::~Pane() {
    if (!window_) return;
    wnoutrefresh(window_);
    delwin(window_);
}

Cell Pane::Text(Cell at, std::wstring_view text, Style style) {
    if (window_) Put(window_, at, text, style);
    return {at_.row + at.row, at_.column + at.column};
}

void Pane::Underline(Cell at) {
    if (window_) mvwchgat(window_, at.row, at.column, 1, A_UNDERLINE, 0, nullptr);
}

}  // namespace twr
