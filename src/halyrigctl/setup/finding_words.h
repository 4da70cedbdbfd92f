// What the readers of the user's files pass over, in words that say what to do.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "halyrigctl/output/say.h"

namespace twr {

// Without the place.
Advice AdviceFor(const Finding& finding);
inline std::string Words(const Finding& finding) { return AdviceFor(finding).Line(); }

// Complains of each file among them that could not be read to its end. False if there is none.
bool ComplainOfUnread(Console& console, const std::vector<Finding>& findings);

// The flaw as a word for programs, which stays the same: "no-such-channel".
std::string_view WordFor(Flaw flaw);

}  // namespace twr
