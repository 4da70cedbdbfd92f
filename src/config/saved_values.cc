#include "config/saved_values.h"

#include <cstdio>

#include "base/wide_text.h"

namespace twr {

std::optional<RegistryValue> SavedValues::Read(std::u16string_view name) {
    if (findings_) asked_.insert(UpperCase(name));
    return registry_.Read(key_, name);
}

std::optional<std::u16string> SavedValues::Text(std::u16string_view name, std::size_t longest) {
    const auto value = Read(name);
    auto text = TextOf(value, longest);
    if (value && !text) Report(name, Flaw::kNotAText);
    return text;
}

std::optional<std::uint32_t> SavedValues::Dword(std::u16string_view name) {
    const auto value = Read(name);
    const auto number = DwordOf(value);
    if (value && !number) Report(name, Flaw::kNotADword);
    return number;
}

std::optional<double> SavedValues::Number(std::u16string_view name, std::size_t longest) {
    const auto text = Text(name, longest);
    double number = 0.0;
    if (!text) return std::nullopt;
    if (std::sscanf(ToBytes(*text).c_str(), "%lf", &number) == 1) return number;
    Report(name, Flaw::kTextNotANumber, *text);
    return std::nullopt;
}

void SavedValues::Report(std::u16string_view name, Flaw flaw, std::u16string_view text) const {
    if (!findings_) return;
    const RegistryPlace at = registry_.PlaceOf(key_, name);
    Place{findings_, at.path, at.line}.Of(name).Report(flaw, text);
}

void SavedValues::ReportOthers(Flaw flaw) const {
    if (!findings_) return;
    for (const std::u16string& name : registry_.Names(key_)) {
        if (!asked_.contains(UpperCase(name))) Report(name, flaw);
    }
}

}  // namespace twr
