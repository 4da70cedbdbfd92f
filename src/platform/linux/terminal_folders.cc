#include "platform/linux/terminal_folders.h"

#include <algorithm>

#include "base/wide_text.h"
#include "platform/linux/folder_list.h"
#include "platform/linux/terminal_text.h"

namespace twr {
namespace {

constexpr int kRowsAroundList = 5;  // two of the frame, the path, and an empty one on either side of the list's head
constexpr CellSize kWanted{18, 64};
constexpr int kMargin = 2;

std::string WithSeparator(std::string folder) { return folder.ends_with('/') ? folder : folder + '/'; }

std::string WithoutSeparator(std::string folder) {
    while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
    return folder;
}

std::string FromCharacter(char32_t character) {
    if (character < 0x10000) return ToUtf8(std::u16string(1, static_cast<char16_t>(character)));
    const char32_t above = character - 0x10000;
    const char16_t pair[] = {static_cast<char16_t>(0xD800 + (above >> 10)), static_cast<char16_t>(0xDC00 + (above & 0x3FF))};
    return ToUtf8(std::u16string_view(pair, 2));
}

}  // namespace

FolderLayer::FolderLayer(std::u16string_view start) { SetTyped(WithSeparator(NearestFolder(ToUtf8(Trimmed(start))))); }

void FolderLayer::SetTyped(std::string typed) {
    typed_ = std::move(typed);
    names_ = SubFolders(SplitTyped(typed_));
    selected_ = kNobody;
    first_ = 0;
}

std::string FolderLayer::PathOf(int entry) const { return SplitTyped(typed_).folder + names_[static_cast<std::size_t>(entry - 1)]; }

CellSize FolderLayer::Needed() const { return {kRowsAroundList + 2, 30}; }

void FolderLayer::Draw(CellSize area, bool) {
    const CellSize size{std::min(area.rows, kWanted.rows), std::min(area.columns, kWanted.columns)};
    const int width = size.columns - 2 * kMargin - 2;
    Pane pane(area, size, L"Choose a folder");
    const std::wstring path = TailThatFits(Printable(FromUtf8(Shown())), width - 1);
    pane.Text({1, kMargin + 1}, path, missing_ ? Style::kAlarm : Style::kStrong);
    pane.Text({1, kMargin + 1 + WidthOf(path)}, L" ", Style::kFocus);
    if (missing_) pane.Text({2, kMargin + 1}, HeadThatFits(L"There is no such folder.", width), Style::kAlarm);

    rows_ = size.rows - kRowsAroundList;
    if (selected_ >= 0) first_ = std::clamp(first_, std::max(0, selected_ - rows_ + 1), selected_);
    first_ = std::clamp(first_, 0, std::max(0, EntryCount() - rows_));
    targets_.Clear();
    for (int row = 0; row < rows_ && first_ + row < EntryCount(); ++row) {
        const int entry = first_ + row;
        const std::u16string name = entry == kParent ? u".." : FromUtf8(names_[static_cast<std::size_t>(entry - 1)]) + u"/";
        std::wstring text = HeadThatFits(L' ' + Printable(name), width);
        text.append(static_cast<std::size_t>(width - WidthOf(text)), L' ');
        targets_.Add(entry, pane.Text({row + 3, kMargin + 1}, text, entry == selected_ ? Style::kFocus : Style::kPlain), width);
    }
    if (first_ > 0) pane.Text({3, size.columns - 2}, L"^");
    if (first_ + rows_ < EntryCount()) pane.Text({rows_ + 2, size.columns - 2}, L"v");
}

void FolderLayer::OnInput(const Input& input) {
    missing_ = false;
    switch (input.key) {
        case Key::kUp:
            return Move(-1);
        case Key::kDown:
            return Move(1);
        case Key::kPageUp:
            return Move(-rows_);
        case Key::kPageDown:
            return Move(rows_);
        case Key::kHome:
            return Move(-EntryCount());
        case Key::kEnd:
            return Move(EntryCount());
        case Key::kRight:
        case Key::kTab:
            return selected_ == kNobody ? Complete() : Open(selected_);
        case Key::kLeft:
            return GoUp();
        case Key::kEnter:
            return selected_ == kParent ? GoUp() : Choose();
        case Key::kEscape:
            return Close();
        case Key::kBackspace:
            return DeleteCharacter();
        case Key::kCharacter:
            return Type(input.character);
        case Key::kPress:
            if (const int hit = targets_.At(input.at); hit >= 0) {
                if (hit == selected_) return Open(hit);
                selected_ = hit;
            }
            return;
        default:
            return;
    }
}

void FolderLayer::Move(int by) { selected_ = std::clamp(selected_ + by, 0, EntryCount() - 1); }

void FolderLayer::Open(int entry) { return entry == kParent ? GoUp() : SetTyped(WithSeparator(PathOf(entry))); }

// The folder that was left is the one selected.
void FolderLayer::GoUp() {
    const std::string left = WithoutSeparator(SplitTyped(typed_).folder);
    const TypedPath above = SplitTyped(left);
    if (above.folder.empty()) return;
    SetTyped(above.folder);
    const auto found = std::ranges::find(names_, above.begun);
    if (found != names_.end()) selected_ = static_cast<int>(found - names_.begin()) + 1;
}

void FolderLayer::Complete() {
    if (names_.empty()) return;
    std::string completed = SplitTyped(typed_).folder + CommonBeginning(names_);
    SetTyped(names_.size() == 1 ? WithSeparator(std::move(completed)) : std::move(completed));
}

void FolderLayer::Choose() {
    const std::string folder = WithoutSeparator(Shown());
    missing_ = !IsFolder(folder);
    if (missing_) return;
    chosen_ = FromUtf8(folder);
    Close();
}

// What is typed goes on from what is shown. A slash behind a separator begins a path anew, a tilde there the user's own folder.
void FolderLayer::Type(char32_t character) {
    const std::string path = selected_ > kParent ? WithSeparator(Shown()) : typed_;
    const bool atSeparator = path.ends_with('/');
    if (atSeparator && character == U'/') return selected_ > kParent ? SetTyped(path) : SetTyped("/");
    if (atSeparator && character == U'~') return SetTyped(WithSeparator(NearestFolder({})));
    SetTyped(path + FromCharacter(character));
}

void FolderLayer::DeleteCharacter() {
    std::u16string path = FromUtf8(Shown());
    if (path.size() > 1) path.pop_back();
    if (path.size() > 1 && path.back() >= 0xD800 && path.back() < 0xDC00) path.pop_back();
    SetTyped(ToUtf8(path));
}

std::vector<Hint> FolderLayer::Hints() const {
    return {{L"Enter", L"Choose", {Key::kEnter}},
            {L"Right", L"Open", {Key::kRight}},
            {L"Left", L"Up", {Key::kLeft}},
            {L"Tab", L"Complete", {Key::kTab}},
            {L"Esc", L"Back", {Key::kEscape}}};
}

}  // namespace twr
