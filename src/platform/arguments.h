// The command line of a program.
#pragma once
#include <string>
#include <vector>

namespace twr {

// The arguments of main in UTF-8, without the program's own name. On Windows main gets text in a code page, so the wide command
// line is used there.
std::vector<std::string> Arguments(int argc, char** argv);

}  // namespace twr
