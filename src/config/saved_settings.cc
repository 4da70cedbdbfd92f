// Filling a new record from what the user's machine has saved.
#include <cstdio>
#include <optional>
#include <string>

#include "base/wide_text.h"
#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";
constexpr std::uint32_t kSavedValues = 16;
constexpr std::uint32_t kSavedFlags = 34;
constexpr std::uint32_t kSavedInts = 11;

std::u16string Numbered(std::u16string_view family, std::uint32_t index) {
    return std::u16string(family) + FromBytes(std::to_string(index));
}

std::optional<std::u16string> SavedText(const Registry& registry, std::u16string_view name) {
    constexpr std::size_t kLongest = 1024;  // bytes, for every program of the suite
    return TextOf(registry.Read(kKey, name), kLongest);
}

std::optional<double> NumberOf(const std::optional<std::u16string>& text) {
    double number = 0.0;
    if (!text || std::sscanf(ToBytes(*text).c_str(), "%lf", &number) != 1) return std::nullopt;
    return number;
}

}  // namespace

void CCore::LoadSavedSettings() {
    if (services_.registry.OpenOrCreate(kKey)) {
        LoadSavedPaths();
        LoadSavedValues();
    }
    LoadBoatsFile();
    LoadChannelsFile();
    LoadAlternatesFile();
}

void CCore::LoadSavedPaths() {
    const auto text = [&](std::u16string_view name) { return SavedText(services_.registry, name); };

    GetDataFolder(u"");  // stores the default
    const auto folder = text(u"DataFolder");
    if (folder && !folder->empty() && services_.files.Exists(*folder)) SetFieldText(view_->dataFolder, *folder);
    SetFieldText(view_->databasePath, text(u"Database2").value_or(GetDatabasePath()));
    SetMarksPath(text(u"MarksXml").value_or(GetMarksPath()));
}

void CCore::LoadSavedValues() {
    const auto number = [&](std::u16string_view name) { return NumberOf(SavedText(services_.registry, name)); };
    const auto dword = [&](std::u16string_view name) { return DwordOf(services_.registry.Read(kKey, name)); };

    for (std::uint32_t i = 0; i < kSavedValues; ++i) {
        SetSystemValue(i, number(Numbered(u"Sys_v", i)).value_or(Load(view_->sysValue[i])));
    }
    for (std::uint32_t i = 0; i < kSavedFlags; ++i) {
        if (const auto flag = dword(Numbered(u"Sys_b", i))) Put(view_->sysFlag[i], static_cast<std::uint8_t>(*flag != 0));
    }
    for (const std::uint32_t unit : {1, 2, 3, 8}) Put(view_->sysInt[unit], 0);
    Put(view_->sysInt[4], 1);  // short distances in boat lengths
    for (std::uint32_t i = 0; i < kSavedInts; ++i) {
        const auto saved = dword(Numbered(u"Sys_i", i));
        SetSystemInt(i, saved ? static_cast<std::int32_t>(*saved) : Load(view_->sysInt[i]));
    }
    SetOwnChannel(kLogBsp, number(u"LogBsp").value_or(kNoValue), 0.0);
    SetOwnChannel(kLogSog, number(u"LogSog").value_or(kNoValue), 0.0);
}

}  // namespace twr
