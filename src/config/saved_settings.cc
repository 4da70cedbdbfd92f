// Filling a new record from what the user's machine has saved.
#include "config/saved_settings.h"

#include <string>

#include "base/wide_text.h"
#include "config/saved_values.h"
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

}  // namespace twr
