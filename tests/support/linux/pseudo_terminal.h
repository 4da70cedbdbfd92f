// A user at a terminal: starts a role of this test program there, reads the screen, types, and waits for what comes of it.
#pragma once
#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/linux/terminal_picture.h"

namespace twr::testing {

class PseudoTerminal {
public:
    // `environment` comes before that of the test: "NAME=value".
    PseudoTerminal(const std::string& role, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});
    ~PseudoTerminal();  // hangs up, which ends the role
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // True as soon as the text is on the screen, or gone from it. False when the role ends or does not move without it.
    bool Shows(std::string_view text);
    bool ShowsNo(std::string_view text);
    bool Focuses(std::string_view text);
    bool OnOwnScreen(bool own);

    void Type(std::string_view keys);
    void Press(std::string_view text) { Type(Click(text)); }
    std::string Click(std::string_view text);  // what the left mouse button sends on the first cell of a text, once that is shown
    void Resize(int rows, int columns);
    void Signal(int number);
    void HangUp();  // takes the terminal away

    int Wait();  // for the end; the exit status, or 128 and the signal

    const TerminalPicture& Picture() const { return picture_; }

private:
    bool WaitUntil(const std::function<bool()>& holds);
    bool ReadMore();

    TerminalPicture picture_;
    pid_t process_ = -1;
    int terminal_ = -1;
};

}  // namespace twr::testing
