// SPDX-License-Identifier: MIT
// Numbers of resources that the executable and its window host agree on.
#pragma once

#define HALYRIG_ICON 128
