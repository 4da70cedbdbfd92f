// SPDX-License-Identifier: MIT
// halyrigctl: a look at the suite's record from the command line.
#include "halyrigctl/commands.h"
#include "platform/console.h"

int main(int argc, char** argv) {
    const auto system = twr::MakeSystem(twr::UserRoots());
    return twr::RunCommandLine(*system, twr::Arguments(argc, argv));
}
