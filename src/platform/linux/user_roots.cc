// SPDX-License-Identifier: MIT
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "base/wide_text.h"
#include "platform/files.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"

namespace twr {
namespace {

// A folder named by the environment is used only if it is absolute.
std::string FolderOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value == '/' ? value : "";
}

std::string Home() {
    std::string home = FolderOf("HOME");
    if (home.empty()) {
        const passwd* user = getpwuid(getuid());
        if (user && user->pw_dir) home = user->pw_dir;
    }
    return home;
}

// Empty without a home folder.
std::string FolderOr(const char* variable, const char* belowHome) {
    std::string folder = FolderOf(variable);
    if (folder.empty() && !Home().empty()) folder = Home() + belowHome;
    return folder;
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsOwnFolder(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

std::string User() { return std::to_string(geteuid()); }

// The environment names the first of them. The other is the same for all of a user's programs, whatever their environments.
std::vector<FilePlace> SessionPlaces() {
    std::vector<FilePlace> places;
    if (const std::string runtime = FolderOf("XDG_RUNTIME_DIR"); IsFolder(runtime)) places.push_back({FromUtf8(runtime)});
    if (const std::string session = "/run/user/" + User(); IsOwnFolder(session)) places.push_back({FromUtf8(session)});
    return places;
}

}  // namespace

std::string FileIn(const FilePlace& place, std::u16string_view prefix, std::u16string_view program, std::u16string_view ending) {
    std::u16string name(program);
    std::ranges::transform(name, name.begin(), [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; });
    return NativePath(JoinPath(place.folder, std::u16string(prefix).append(name).append(ending)));
}

Roots UserRoots() {
    Roots roots;
    const std::string config = FolderOr("XDG_CONFIG_HOME", "/.config");
    if (!config.empty()) roots.registry = FromUtf8(config + "/tidewright/registry.reg");
    roots.programData = FromUtf8(FolderOr("XDG_DATA_HOME", "/.local/share"));
    roots.status = roots.locks = SessionPlaces();
    // Folders that exist even without a session of the user.
    const std::u16string tag = FromUtf8("-" + User());
    roots.locks.push_back({u"/tmp", tag});
    if (roots.status.empty()) roots.status.push_back({u"/dev/shm", tag});
    return roots;
}

}  // namespace twr
