// Texts in the record: fixed fields of UTF-16, ended by a zero.
#pragma once
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace twr {

// Stores as much of the text as the field holds beside its zero.
template <std::size_t Units>
void SetFieldText(char16_t (&field)[Units], std::u16string_view text) {
    const std::size_t length = std::min(text.size(), Units - 1);
    std::copy_n(text.data(), length, field);
    field[length] = 0;
}

// The text up to its zero, or the whole field when another program has left none.
template <std::size_t Units>
std::u16string_view FieldView(const char16_t (&field)[Units]) {
    return {field, std::find(field, field + Units, u'\0')};
}

template <std::size_t Units>
std::u16string FieldText(const char16_t (&field)[Units]) {
    return std::u16string(FieldView(field));
}

}  // namespace twr
