// SPDX-License-Identifier: MIT
// A user at a terminal: starts a role of this test program there, reads the screen, types, and waits for the result.
#pragma once
#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

struct VTerm;
struct VTermScreen;

namespace twr::testing {

class PseudoTerminal {
public:
    // `environment` comes before that of the test: "NAME=value".
    PseudoTerminal(const std::string& role, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});
    ~PseudoTerminal();  // hangs up, which ends the role
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // True as soon as the text is within a row of the screen, or gone from it, or stands out by being reversed. False when the role
    // ends or does not move without it.
    bool Shows(std::string_view text);
    bool ShowsNo(std::string_view text);
    bool Focuses(std::string_view text);

    void Type(std::string_view keys);
    void Resize(int rows, int columns);       // the picture follows up to 200 by 200
    void Spoil() { TakeIn({"\033[2J", 4}); }  // as another program would that writes there too
    void Signal(int number);
    void HangUp();  // takes the terminal away

    int Wait();         // for the end; the exit status, or 128 and the signal
    int WaitBlindly();  // the same, without reading what the role writes

    // It is on the shell's screen, waits for lines and shows what is typed.
    bool GivenBack() const;

    std::string Picture(bool onlyReversed = false) const;  // UTF-8, rows end in line feeds
    bool HasColours() const;                               // other than the terminal's own
    std::size_t Taken() const { return taken_; }           // bytes that the role has written and the picture shows

private:
    bool WaitUntil(const std::function<bool()>& holds);
    bool ReadMore();
    void TakeIn(std::string_view bytes);

    int rows_ = 24, columns_ = 80;
    VTerm* const picture_;
    VTermScreen* const screen_;
    bool onOwnScreen_ = false;  // and not on the shell's
    std::size_t taken_ = 0;
    pid_t process_ = -1;
    int terminal_ = -1;
};

// Of a `terminal` that is a pointer to one.
#define EXPECT_SHOWS(text) EXPECT_TRUE(terminal->Shows(text)) << (text) << " is not in\n" << terminal->Picture()
#define EXPECT_SHOWS_NO(text) EXPECT_TRUE(terminal->ShowsNo(text)) << (text) << " is in\n" << terminal->Picture()

}  // namespace twr::testing
