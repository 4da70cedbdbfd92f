// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "base/wide_text.h"
#include "platform/files.h"
#include "platform/linux/terminal/layers.h"
#include "platform/linux/terminal/text.h"

namespace twr {
namespace {

namespace fs = std::filesystem;

constexpr int kRowsAroundList = 5;  // two of the frame, the path, and two empty ones
constexpr CellSize kSmallest{kRowsAroundList + 3, 30}, kLargest{18, 64};

// The first two entries: this folder itself, and the one above. Its sub-folders follow.
constexpr std::size_t kHere = 0, kParent = 1, kFirstName = 2;

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

fs::path NearestFolder(const fs::path& path) {
    const char* const home = std::getenv("HOME");
    if (!path.is_absolute()) return home && IsFolder(home) ? home : "/";
    fs::path folder = path.lexically_normal();
    while (folder.has_relative_path() && (!folder.has_filename() || !IsFolder(folder))) folder = folder.parent_path();
    return folder;
}

// Sorted, hidden ones last. A name that is not UTF-8 could not be found again.
std::vector<std::string> SubFolders(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (ToUtf8(FromUtf8(name)) == name && IsFolder(entry->path())) names.push_back(std::move(name));
    }
    std::ranges::sort(names, {}, [](const std::string& name) { return std::pair(name.starts_with('.'), name); });
    return names;
}

}  // namespace

FolderLayer::FolderLayer(std::u16string_view start, std::u16string_view library)
    : library_(library.empty() ? "" : ToUtf8(library) + ToUtf8(kLibrarySuffix)) {
    Open(NearestFolder(ToUtf8(Trimmed(start))));
}

void FolderLayer::Open(const std::string& folder) {
    folder_ = folder;
    entries_ = {"Choose this folder", ".."};
    std::ranges::move(SubFolders(folder), std::back_inserter(entries_));
    marked_.assign(entries_.size(), false);
    for (std::size_t i = 0; i < entries_.size() && !library_.empty(); ++i) {
        std::error_code error;
        marked_[i] = fs::exists(fs::path(folder) / (i == kHere ? "." : entries_[i]) / library_, error);
    }
    focus_ = kHere;
}

Panel FolderLayer::Shown(CellSize area) {
    const CellSize size{std::clamp(area.rows, kSmallest.rows, kLargest.rows),
                        std::clamp(area.columns, kSmallest.columns, kLargest.columns)};
    const int width = size.columns - 2 * kMargin;
    Panel panel{size, L"Choose a folder", {}, {L"Esc Back", L"Enter Open or choose", L"Left Up"}};
    if (!library_.empty()) panel.hints.push_back(L"* holds " + Printable(FromUtf8(library_)));
    panel.parts.push_back({1, kMargin, TailThatFits(Printable(FromUtf8(folder_)), width)});
    rows_ = static_cast<std::size_t>(size.rows - kRowsAroundList);
    first_ = std::clamp(first_, focus_ - std::min(focus_, rows_ - 1), focus_);
    for (std::size_t i = first_; i < std::min(first_ + rows_, entries_.size()); ++i) {
        const std::wstring text = Printable(FromUtf8(entries_[i])) + (i < kFirstName ? L"" : L"/");
        panel.parts.push_back(
            {static_cast<int>(i - first_) + 3, kMargin, Fitted((marked_[i] ? L'*' : L' ') + text, width), i == focus_});
    }
    if (first_ > 0) panel.parts.push_back({2, size.columns / 2, L"^"});
    if (first_ + rows_ < entries_.size()) panel.parts.push_back({size.rows - 2, size.columns / 2, L"v"});
    return panel;
}

void FolderLayer::OnKey(char32_t key) {
    if (key == Key::kEscape) return Close();
    if (key == Key::kEnter || (key == Key::kRight && focus_ != kHere)) return OnEnter();
    if (key == Key::kLeft) return GoUp();
    if (key == Key::kPageUp) focus_ -= std::min(focus_, rows_);
    if (key == Key::kPageDown) focus_ = std::min(focus_ + rows_, entries_.size() - 1);
    if (key > U' ' && key < Key::kOther) return Seek(key);
    if (key != Key::kRight) MoveFocus(key, entries_.size());
}

void FolderLayer::OnEnter() {
    if (focus_ >= kFirstName) return Open(fs::path(folder_) / entries_[focus_]);
    if (focus_ == kParent) return GoUp();
    chosen_ = FromUtf8(folder_);
    Close();
}

// The folder that was left is the one selected.
void FolderLayer::GoUp() {
    const fs::path left(folder_);
    Open(left.parent_path());
    const auto found = std::find(entries_.begin() + kFirstName, entries_.end(), left.filename());
    if (found != entries_.end()) focus_ = static_cast<std::size_t>(found - entries_.begin());
}

// Moves to the next name that begins with the character.
void FolderLayer::Seek(char32_t character) {
    const std::u16string begun(1, static_cast<char16_t>(character));
    for (std::size_t step = 1; step <= entries_.size(); ++step) {
        const std::size_t at = (focus_ + step) % entries_.size();
        if (at < kFirstName || !EqualsIgnoringCase(FromUtf8(entries_[at]).substr(0, 1), begun)) continue;
        focus_ = at;
        return;
    }
}

}  // namespace twr
