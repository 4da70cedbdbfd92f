// SPDX-License-Identifier: MIT
// Messages to a user who has no window.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// From now on a write to a closed pipe fails instead of ending the process.
void IgnoreBrokenPipes();

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption);

// Writes a line, after the program's name.
void TellUser(const std::string& text);

// While one exists, a screen covers the terminal, and lines for that wait until it is gone.
class ToldLater {
public:
    ToldLater();
    ~ToldLater();
    ToldLater(const ToldLater&) = delete;
    ToldLater& operator=(const ToldLater&) = delete;
};

}  // namespace twr
