// SPDX-License-Identifier: MIT
// The real services of this system, under roots that no running suite and no other test uses.
#pragma once
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system.h"
#include "platform/xml.h"

namespace twr::testing {

// A folder of a test's own, made with the object in the system's folder for temporary files, and removed with it, whatever is in
// it.
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

    // The bytes of a file in it; empty when there is none.
    std::string Read(std::string_view name) const;

private:
    const std::filesystem::path path_;
};

// Names, for the summary of all tests, a row of a table that this machine or this build can't try.
void LeaveOut(const std::string& row, const std::string& why);

// The bytes of a file; empty when there is none.
std::string BytesOf(const std::filesystem::path& path);

// Without their ends.
std::vector<std::string> LinesOf(const std::string& text, char end = '\n');

// Letters and digits that no other running test has.
std::string UniqueName();

// Roots that follow from `name` and `folder` alone, so that a second process can make the same.
Roots TestRoots(const std::string& name, const std::u16string& folder);

struct TestSystem {
    TempFolder folder;
    std::string name = UniqueName();
    std::unique_ptr<System> system = MakeSystem(TestRoots(name, folder.Text()));

    // What a second process needs to make the same system.
    std::vector<std::string> Arguments() const;
};

std::unique_ptr<System> SystemOf(const std::vector<std::string>& arguments);

// What an XML reader gives, in one line: elements as "name(attribute=value,...)", separated by blanks, in UTF-8.
std::string Outline(XmlReader& reader);

// The bytes of a text in UTF-16, without a mark.
std::string Utf16Bytes(std::u16string_view text, bool bigEndian);

}  // namespace twr::testing
