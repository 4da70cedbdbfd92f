#include "support/temp_folder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace twr::testing {
namespace fs = std::filesystem;

TempFolder::TempFolder() : path_(fs::temp_directory_path() / ("halyrig-test-" + UniqueName())) { fs::create_directory(path_); }

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::u16string TempFolder::Text() const { return path_.u16string(); }

std::u16string TempFolder::File(std::string_view name) const { return (path_ / name).make_preferred().u16string(); }

std::u16string TempFolder::Write(std::string_view name, std::string_view bytes) const {
    const fs::path path(File(name));
    fs::create_directories(path.parent_path());
    fs::remove(path);  // some file systems wait for the disk when an old file is emptied and written again
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path.u16string();
}

std::string TempFolder::Read(std::string_view name) const {
    std::ifstream file(fs::path(File(name)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string UniqueName() {
    std::random_device random;
    std::string name;
    for (int i = 0; i < 12; ++i) name += static_cast<char>('a' + random() % 26);
    return name;
}

}  // namespace twr::testing
