#include "platform/linux/folder_list.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "base/wide_text.h"

namespace twr {
namespace {

namespace fs = std::filesystem;

// A name that is no UTF-8 could not be found again.
bool CanBeChosen(const std::string& name, const std::string& begun) {
    return name.starts_with(begun) && (name[0] != '.' || begun.starts_with('.')) && ToUtf8(FromUtf8(name)) == name;
}

}  // namespace

TypedPath SplitTyped(const std::string& path) {
    const std::size_t begin = path.rfind('/') + 1;  // 0 without any
    return {path.substr(0, begin), path.substr(begin)};
}

bool IsFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string NearestFolder(const std::string& path) {
    if (!path.starts_with('/')) {
        const char* home = std::getenv("HOME");
        return home && IsFolder(home) ? home : "/";
    }
    std::string folder = path;
    while (folder.size() > 1 && (folder.ends_with('/') || !IsFolder(folder))) {
        folder.resize(std::max<std::size_t>(1, folder.rfind('/')));
    }
    return folder;
}

std::vector<std::string> SubFolders(const TypedPath& typed) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(typed.folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (CanBeChosen(name, typed.begun) && entry->is_directory(unknown)) names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

std::string CommonBeginning(const std::vector<std::string>& names) {
    if (names.empty()) return {};
    std::string common = names.front();
    for (const std::string& name : names) {
        const auto differ = std::ranges::mismatch(common, name).in1;
        common.erase(differ, common.end());
    }
    // Not within a character.
    while (!common.empty() && FromUtf8(common).ends_with(u'\uFFFD')) common.pop_back();
    return common;
}

}  // namespace twr
