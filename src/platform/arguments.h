// What a program was told on its command line.
#pragma once
#include <string>
#include <vector>

namespace twr {

// The arguments of main in UTF-8, without the program's own name. Windows hands main a text of few letters, so its own form is
// taken there instead.
std::vector<std::string> Arguments(int argc, char** argv);

}  // namespace twr
