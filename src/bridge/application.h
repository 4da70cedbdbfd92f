// SPDX-License-Identifier: MIT
// The process: one instance, one dialog.
#pragma once
#include "platform/system.h"

namespace twr {

class CHalyrig32App {
public:
    explicit CHalyrig32App(System& system) : system_(system) {}

    // Runs the dialog until it ends, or brings forward the instance already running. Always false: nothing is left to run.
    bool InitInstance();

private:
    System& system_;
};

}  // namespace twr
