// SPDX-License-Identifier: MIT
// The data folder, the root of the suite's files, and the paths that the suite's programs share.
#include "core/core.h"
#include "core/record_access.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr std::u16string_view kSuiteFolder = u"Tidewright";
constexpr std::u16string_view kDatabaseName = u"Tidewright.db";
constexpr std::u16string_view kDatabaseExtension = u".db";
constexpr std::u16string_view kMarksName = u"marks.xml";

// From the last dot of the file's name, unless that starts the name, up to a colon or the end. A drive's colon is not part of the
// name.
std::u16string_view ExtensionOf(std::u16string_view path) {
    std::u16string_view name = path.substr(path.find_last_of(u"/\\") + 1);
    name = name.substr(0, name.find(u':', name.size() == path.size() ? 2 : 0));
    const std::size_t dot = name.rfind(u'.');
    return dot == std::u16string_view::npos || dot == 0 ? std::u16string_view() : name.substr(dot);
}

}  // namespace

std::u16string CCore::GetProgramDataFolder() const { return services_.files.ProgramDataFolder(); }

std::u16string CCore::GetDataFolder(std::u16string_view subfolder) {
    if (!view_) return {};
    const auto make = [&](const std::u16string& path) {
        if (!services_.files.Exists(path)) services_.files.MakeFolder(path);
    };
    const bool mayName = !IsBeingFilled();  // asked before the look: a creator that ends between them has named one
    std::u16string folder = FieldText(view_->dataFolder);
    if (folder.empty()) {
        folder = GetProgramDataFolder();
        if (folder.empty()) return {};
        make(folder = JoinPath(folder, kSuiteFolder));
        const bool exists = services_.files.Exists(folder);
        if (exists && mayName) {
            SetFieldText(view_->dataFolder, folder);
            folder = FieldText(view_->dataFolder);
        }
        if (subfolder.empty() && !exists) return {};
    }
    if (subfolder.empty()) return folder;
    std::u16string path = JoinPath(folder, subfolder);
    make(path);
    return path;
}

std::u16string CCore::GetDataFile(std::u16string_view subfolder, std::u16string_view name) {
    const std::u16string folder = GetDataFolder(subfolder);
    return folder.empty() ? folder : JoinPath(folder, name);
}

std::u16string CCore::GetDatabasePath() {
    if (!view_) return {};
    CheckDatabasePath();
    const std::u16string path = FieldText(view_->databasePath);
    return path.empty() ? JoinPath(GetDataFolder(u"database"), kDatabaseName) : path;
}

void CCore::CheckDatabasePath() {
    if (view_ && ExtensionOf(FieldText(view_->databasePath)) != kDatabaseExtension) SetFieldText(view_->databasePath, {});
}

std::u16string CCore::GetMarksPath() { return JoinPath(GetDataFolder(u""), kMarksName); }

void CCore::SetMarksPath(std::u16string_view path) {
    if (view_ && !path.empty()) SetFieldText(view_->marksXmlPath, path);
}

}  // namespace twr
