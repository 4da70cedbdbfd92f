// The sub-folders of a folder, by what a user has typed of a path.
#pragma once
#include <string>
#include <vector>

namespace twr {

// The part of a path up to and with its last separator, and the name begun behind it.
struct TypedPath {
    std::string folder, begun;
};
TypedPath SplitTyped(const std::string& path);

bool IsFolder(const std::string& path);

// The folder itself, or the nearest above it that is there; the user's own where the text is no full path.
std::string NearestFolder(const std::string& path);

// Names of the sub-folders that begin so, sorted. Hidden ones only when their point has been typed.
std::vector<std::string> SubFolders(const TypedPath& typed);

// What all the names begin with.
std::string CommonBeginning(const std::vector<std::string>& names);

}  // namespace twr
