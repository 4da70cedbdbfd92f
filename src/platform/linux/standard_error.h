// Messages to a user who has no window.
#pragma once
#include <string_view>

namespace twr {

// From now on a write that nobody takes any more fails instead of ending the process.
void IgnoreBrokenPipes();

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption);

}  // namespace twr
