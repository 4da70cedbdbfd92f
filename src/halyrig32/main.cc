// SPDX-License-Identifier: MIT
#include "bridge/application.h"
#include "platform/system.h"

int main(int argc, char** argv) {
    if (twr::AnswerArguments(argc, argv)) return 0;
    const auto system = twr::MakeSystem(twr::UserRoots());
    twr::CHalyrig32App(*system).InitInstance();
    return system->ExitStatus();
}
