// A folder of a test's own.
#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace twr::testing {

// Made with the object in the system's folder for temporary files, and removed with it, whatever is in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::u16string Text() const;

    // The full path of something in it, levels separated by slashes.
    std::u16string File(std::string_view name) const;

    // Writes a file in it and gives its full path; folders on the way are made.
    std::u16string Write(std::string_view name, std::string_view bytes) const;

    // The bytes of a file in it; empty if there is none.
    std::string Read(std::string_view name) const;

private:
    const std::filesystem::path path_;
};

// Letters and digits unique among the running tests.
std::string UniqueName();

}  // namespace twr::testing
