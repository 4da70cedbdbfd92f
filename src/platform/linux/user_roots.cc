#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/wide_text.h"
#include "platform/system.h"

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

// The environment names the first of them. The others are the same for all of a user's programs, whatever their environments, and
// the last exists even without a session of the user.
std::vector<LockPlace> LockPlaces() {
    const std::string user = std::to_string(geteuid());
    std::vector<LockPlace> places;
    if (const std::string runtime = FolderOf("XDG_RUNTIME_DIR"); IsFolder(runtime)) places.push_back({FromUtf8(runtime)});
    if (const std::string session = "/run/user/" + user; IsOwnFolder(session)) places.push_back({FromUtf8(session)});
    places.push_back({u"/tmp", FromUtf8("-" + user)});
    return places;
}

}  // namespace

Roots UserRoots() {
    Roots roots;
    const std::string config = FolderOr("XDG_CONFIG_HOME", "/.config");
    if (!config.empty()) roots.registry = FromUtf8(config + "/tidewright/registry.reg");
    roots.programData = FromUtf8(FolderOr("XDG_DATA_HOME", "/.local/share"));
    roots.locks = LockPlaces();
    return roots;
}

}  // namespace twr
