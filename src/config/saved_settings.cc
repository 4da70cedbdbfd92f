// SPDX-License-Identifier: MIT
#include "config/saved_settings.h"

#include <cstdio>
#include <string>

#include "base/wide_text.h"
#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

std::u16string Numbered(std::u16string_view family, std::uint32_t index) {
    return std::u16string(family) + FromBytes(std::to_string(index));
}

constexpr std::size_t kLongest = 1024;  // bytes of a text, for every program of the suite

}  // namespace

void CCore::LoadSavedSettings() {
    if (services_.registry.OpenOrCreate(kSavedSettingsKey)) {
        SavedValues saved(services_.registry, kSavedSettingsKey, services_.findings);
        LoadSavedPaths(saved);
        LoadSavedValues(saved);
        saved.ReportOthers(Flaw::kForeignSetting);
    }
    LoadBoatsFile();
    LoadChannelsFile();
    LoadAlternatesFile();
}

void CCore::LoadSavedPaths(SavedValues& saved) {
    GetDataFolder(u"");  // stores the default
    const auto folder = saved.Text(u"DataFolder", kLongest);
    if (folder && !folder->empty()) {
        if (services_.files.Exists(*folder)) {
            SetFieldText(view_->dataFolder, *folder);
        } else {
            saved.Report(u"DataFolder", Flaw::kNoSuchFolder, *folder);
        }
    }
    SetFieldText(view_->databasePath, saved.Text(u"Database2", kLongest).value_or(GetDatabasePath()));
    SetMarksPath(saved.Text(u"MarksXml", kLongest).value_or(GetMarksPath()));
}

void CCore::LoadSavedValues(SavedValues& saved) {
    const auto number = [&](std::u16string_view name) { return saved.Number(name, kLongest); };

    for (std::uint32_t i = 0; i < kSavedValues; ++i) {
        const std::u16string name = Numbered(u"Sys_v", i);
        const double value = number(name).value_or(Load(view_->sysValue[i]));
        SetSystemValue(i, value);
        if (const double stored = Load(view_->sysValue[i]); stored != value) {
            saved.Report(name, Flaw::kBounded, FromBytes(std::to_string(stored)));
        }
    }
    for (std::uint32_t i = 0; i < kSavedFlags; ++i) {
        if (const auto flag = saved.Dword(Numbered(u"Sys_b", i))) Put(view_->sysFlag[i], static_cast<std::uint8_t>(*flag != 0));
    }
    for (const std::uint32_t unit : {1u, 2u, 3u, 8u}) Put(view_->sysInt[unit], 0);
    Put(view_->sysInt[4], 1);  // short distances in boat lengths
    for (std::uint32_t i = 0; i < kSavedInts; ++i) {
        const std::u16string name = Numbered(u"Sys_i", i);
        const auto choice = saved.Dword(name);
        SetSystemInt(i, choice ? static_cast<std::int32_t>(*choice) : Load(view_->sysInt[i]));
        if (const std::int32_t stored = Load(view_->sysInt[i]); choice && static_cast<std::int32_t>(*choice) != stored) {
            saved.Report(name, Flaw::kBounded, FromBytes(std::to_string(stored)));
        }
    }
    SetOwnChannel(kLogBsp, number(u"LogBsp").value_or(kNoValue), 0.0);
    SetOwnChannel(kLogSog, number(u"LogSog").value_or(kNoValue), 0.0);
}

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
