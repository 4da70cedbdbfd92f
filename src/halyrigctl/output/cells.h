// SPDX-License-Identifier: MIT
// Texts in columns. A width is a number of characters; texts are UTF-8.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace twr {

std::size_t WidthOf(std::string_view text);

// The text's first characters, as many as `width` allows.
std::string Cut(std::string_view text, std::size_t width);

// With blanks around it up to `width`; a wider text stays as it is.
std::string Padded(const std::string& text, std::size_t width);
std::string PaddedLeft(const std::string& text, std::size_t width);
std::string Centred(const std::string& text, std::size_t width);

}  // namespace twr
