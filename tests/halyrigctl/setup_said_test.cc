// SPDX-License-Identifier: MIT
// Scenes of which every word is looked at: what is wrong anywhere in what a navigator reads shows here.
#include "halyrigctl/transcript.h"

namespace twr::testing {
namespace {

}  // namespace
}  // namespace twr::testing
