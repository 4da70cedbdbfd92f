// SPDX-License-Identifier: MIT
#include "support/test_system.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>
#include <system_error>

#include "base/wide_text.h"
#include "platform/files.h"

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

std::string TempFolder::Read(std::string_view name) const { return BytesOf(fs::path(File(name))); }

void LeaveOut(const std::string& row, const std::string& why) { ::testing::Test::RecordProperty("left out " + row, why); }

// At once: byte by byte, or through a stream, a large file takes seconds under the sanitizers.
std::string BytesOf(const fs::path& path) {
    std::error_code none;
    const std::uintmax_t size = fs::file_size(path, none);
    std::string bytes(none ? 0 : static_cast<std::size_t>(size), 0);
    std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

std::vector<std::string> LinesOf(const std::string& text, char end) {
    std::vector<std::string> lines;
    std::istringstream all(text);
    for (std::string line; std::getline(all, line, end);) lines.push_back(line);
    return lines;
}

std::string UniqueName() {
    std::random_device random;
    std::string name;
    for (int i = 0; i < 12; ++i) name += static_cast<char>('a' + random() % 26);
    return name;
}

Roots TestRoots(const std::string& name, const std::u16string& folder) {
    Roots roots;
    roots.namePrefix = u"HalyrigTest_" + FromBytes(name) + u"_";
    // Where paths are separated by slashes the registry is a file, elsewhere a key.
    roots.registry =
        kPathSeparator == u'/' ? JoinPath(folder, u"config/registry.reg") : u"Software\\HalyrigTest\\" + FromBytes(name);
    roots.programData = JoinPath(folder, u"ProgramData");
    roots.locks = roots.status = {{folder}};
    return roots;
}

std::vector<std::string> TestSystem::Arguments() const { return {name, ToUtf8(folder.Text())}; }

std::unique_ptr<System> SystemOf(const std::vector<std::string>& arguments) {
    return MakeSystem(TestRoots(arguments[0], FromUtf8(arguments[1])));
}

std::string Outline(XmlReader& reader) {
    std::string outline;
    XmlElement element;
    while (reader.Next(element)) {
        if (!outline.empty()) outline += ' ';
        outline += ToUtf8(element.name) + '(';
        for (const XmlAttribute& attribute : element.attributes) {
            if (outline.back() != '(') outline += ',';
            outline += ToUtf8(attribute.name) + '=' + ToUtf8(attribute.value);
        }
        outline += ')';
    }
    return outline;
}

std::string Utf16Bytes(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    for (const char16_t c : text) {
        for (const int shift : {bigEndian ? 8 : 0, bigEndian ? 0 : 8}) bytes += static_cast<char>(c >> shift);
    }
    return bytes;
}

}  // namespace twr::testing
