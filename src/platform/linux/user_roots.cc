#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/wide_text.h"
#include "platform/system.h"

namespace twr {
namespace {

// A folder named by the environment counts when it is absolute.
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

// Empty without a home to stand in.
std::string FolderOr(const char* variable, const char* belowHome) {
    std::string folder = FolderOf(variable);
    if (folder.empty() && !Home().empty()) folder = Home() + belowHome;
    return folder;
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Roots UserRoots() {
    Roots roots;
    const std::string config = FolderOr("XDG_CONFIG_HOME", "/.config");
    if (!config.empty()) roots.registry = FromUtf8(config + "/tidewright/registry.reg");
    roots.programData = FromUtf8(FolderOr("XDG_DATA_HOME", "/.local/share"));
    const std::string runtime = FolderOf("XDG_RUNTIME_DIR");
    if (IsFolder(runtime)) {
        roots.runtime = FromUtf8(runtime);
    } else {
        roots.runtime = u"/tmp";
        roots.lockTag = FromUtf8("-" + std::to_string(getuid()));
    }
    return roots;
}

}  // namespace twr
