// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "halyrigctl/setup/names.h"

namespace twr::testing {
namespace {

TEST(NearestNameTest, GuessesOneSlipInAShortNameAndTwoInALongOne) {
    const std::u16string names[] = {u"HDG", u"AWA", u"AWS", u"VARIATION", u"Mk Rng"};
    const std::pair<std::u16string_view, std::optional<std::u16string>> rows[] = {{u"hdg", u"HDG"},
                                                                                  {u"HGD", u"HDG"},
                                                                                  {u"HDGX", u"HDG"},
                                                                                  {u"aws", u"AWS"},
                                                                                  {u"AWX", u"AWA"},
                                                                                  {u"variaton", u"VARIATION"},
                                                                                  {u"VARIATNIO", u"VARIATION"},
                                                                                  {u"MkRng", u"Mk Rng"},
                                                                                  {u"BSP", {}},
                                                                                  {u"H", {}},
                                                                                  {u"", {}},
                                                                                  {u"VARI", {}}};
    for (const auto& [typed, meant] : rows) EXPECT_EQ(meant, Nearest(typed, names)) << ::testing::PrintToString(typed);
}

}  // namespace
}  // namespace twr::testing
