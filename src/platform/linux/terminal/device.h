// SPDX-License-Identifier: MIT
// The terminal of standard input and output, taken over for the life of the object. Nothing here waits for a terminal that accepts
// no output, and the terminal is restored on every exit, a crash included.
#pragma once
#include <string>
#include <string_view>

#include "platform/linux/descriptor.h"

namespace twr {

struct CellSize {
    int rows, columns;
};

// False while the program runs in its shell's background, where it must leave the terminal alone.
bool TerminalIsOurs();

class TerminalDevice {
public:
    TerminalDevice();
    ~TerminalDevice();

    // False if the terminal can't be opened.
    explicit operator bool() const { return bool(output_); }

    // At most what a screen can use; 24 by 80 if the terminal doesn't know.
    CellSize Size() const;

    // Writes what the terminal accepts now and keeps the rest for Push.
    void Write(std::string_view bytes);
    void Push();

    // True while something is kept; Output can then be polled for the terminal's readiness.
    bool Busy() const { return !kept_.empty(); }
    int Output() const { return output_.Get(); }

    // Sets what is written at the end, whatever its cause. Up to 255 bytes.
    void WriteAtEnd(std::string_view bytes);

private:
    const Descriptor output_;
    std::string kept_;
};

}  // namespace twr
