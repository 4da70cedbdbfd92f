// Messages to a user who has no window.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// From now on a write that nobody takes any more fails instead of ending the process.
void IgnoreBrokenPipes();

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption);

// Writes a line, the program's name before it.
void TellUser(const std::string& text);

// While one lives, a screen stands where the lines would be written to a terminal: they wait until it has gone.
class ToldLater {
public:
    ToldLater();
    ~ToldLater();
    ToldLater(const ToldLater&) = delete;
    ToldLater& operator=(const ToldLater&) = delete;
};

}  // namespace twr
