// SPDX-License-Identifier: MIT
#include "platform/files.h"

namespace twr {

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    path += kPathSeparator;
    path += name;
    return path;
}

std::optional<std::string> ReadWhole(Files& files, std::u16string_view path) {
    std::string bytes;
    const auto source = files.Open(path);
    if (!source) return files.Exists(path) ? std::nullopt : std::optional(bytes);
    char chunk[16384];
    while (const std::size_t got = bytes.size() <= kLargestFile ? source->Read(chunk, sizeof chunk) : 0) bytes.append(chunk, got);
    return source->Failure().empty() && bytes.size() <= kLargestFile ? std::optional(bytes) : std::nullopt;
}

}  // namespace twr
