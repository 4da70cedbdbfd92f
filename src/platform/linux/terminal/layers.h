// SPDX-License-Identifier: MIT
// The layers of the screen: the dialog below, and on it a box or the folder list. The topmost takes all keys.
#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/desktop.h"
#include "platform/linux/terminal/screen.h"

namespace twr {

inline constexpr int kMargin = 3;  // columns from a panel's edge to what is in it

class Layer {
public:
    virtual ~Layer() = default;

    // What it shows. It fits into `area` unless that is smaller than what it needs, which it gives for an empty area.
    virtual Panel Shown(CellSize area) = 0;
    virtual void OnKey(char32_t key) = 0;

    bool Closed() const { return closed_; }

protected:
    void Close() { closed_ = true; }

    // Moves the focus round among `count` stops if the key is one that does.
    void MoveFocus(char32_t key, std::size_t count);

    std::size_t focus_ = 0;

private:
    bool closed_ = false;
};

// The dialog's controls, in tab order, and its menu on the function keys.
class FormLayer final : public Layer {
public:
    // `window` gets the changes of a press, `dialog` its events. `run` shows a layer until it has closed.
    FormLayer(const DialogTemplate& layout, Dialog& dialog, DialogWindow& window, std::function<void(Layer&)> run);

    void AddMenuItem(int command, std::u16string_view text) { menu_.emplace_back(command, text); }

    Panel Shown(CellSize area) override;
    void OnKey(char32_t key) override;

private:
    std::wstring TextOf(const ControlTemplate& control, int width) const;
    void Press(const ControlTemplate& control);

    const DialogTemplate& layout_;
    Dialog& dialog_;
    DialogWindow& window_;
    const std::function<void(Layer&)> run_;
    std::vector<const ControlTemplate*> stops_;         // controls that take the focus
    std::vector<std::pair<int, std::u16string>> menu_;  // commands and their texts
};

// A message with its buttons.
class BoxLayer final : public Layer {
public:
    BoxLayer(std::u16string_view text, std::u16string_view caption, BoxButtons buttons);

    // kNone until it has been answered.
    BoxAnswer Answer() const { return answer_; }

    Panel Shown(CellSize area) override;
    void OnKey(char32_t key) override;

private:
    const std::u16string text_, caption_;
    const std::vector<BoxAnswer> answers_;  // those of the buttons
    BoxAnswer answer_ = BoxAnswer::kNone;
};

// A folder's sub-folders, from which one is chosen.
class FolderLayer final : public Layer {
public:
    // Opens `start`, or the nearest folder above it; the user's own if that is not a full path. Folders that hold the library,
    // which is named without its suffix, get a mark.
    FolderLayer(std::u16string_view start, std::u16string_view library);

    // nullopt if it was left without a choice.
    const std::optional<std::u16string>& Chosen() const { return chosen_; }

    Panel Shown(CellSize area) override;
    void OnKey(char32_t key) override;

private:
    void Open(const std::string& folder);
    void GoUp();
    void OnEnter();
    void Seek(char32_t character);

    const std::string library_;  // its file
    std::string folder_;
    std::vector<std::string> entries_;
    std::vector<bool> marked_;  // of each entry
    std::size_t first_ = 0;     // the entry in the list's first row
    std::size_t rows_ = 1;      // of the list, in the last picture
    std::optional<std::u16string> chosen_;
};

}  // namespace twr
