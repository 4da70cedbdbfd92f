// SPDX-License-Identifier: MIT
// What keeps this user, and so the bridge, from files that are there, or from a part of what is in them.
#pragma once
#include <string>
#include <string_view>

#include "halyrigctl/setup/reasons.h"
#include "platform/files.h"

namespace twr {

// A level of the path that is spelled in other capitals, or may not be read; nothing if all is there to be read, or simply missing.
Fault FaultOnTheWay(const Files& files, std::u16string_view path);

// "file:line: "; without a line "file: ".
std::string PlaceInWords(std::u16string_view path, std::size_t line);

// That of a finding, with its place: FaultOnTheWay if that is why the file is not read, else `reason`, whose words are the
// finding's.
Fault FaultOfFinding(const Files& files, const Finding& finding, Reason reason);

// Whether nothing behind it is read.
bool EndsReading(Flaw flaw);

}  // namespace twr
