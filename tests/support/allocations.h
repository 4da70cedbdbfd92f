// SPDX-License-Identifier: MIT
// A program that is linked with allocations.cc counts every request for memory.
#pragma once

namespace twr::testing {

int Allocations();

}  // namespace twr::testing
