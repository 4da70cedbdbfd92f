// The list of folders from which one is chosen. A path can be typed as well; the list then shows what it can become.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/terminal_layer.h"

namespace twr {

class FolderLayer final : public Layer {
public:
    explicit FolderLayer(std::u16string_view start);

    // Nothing when it was left without a choice.
    const std::optional<std::u16string>& Chosen() const { return chosen_; }

    CellSize Needed() const override;
    void Draw(CellSize area, bool topmost) override;
    void OnInput(const Input& input) override;
    std::vector<Hint> Hints() const override;

private:
    static constexpr int kParent = 0;   // the first entry, ".."
    static constexpr int kNobody = -1;  // no entry is selected, what is typed counts

    void SetTyped(std::string typed);
    int EntryCount() const { return static_cast<int>(names_.size()) + 1; }
    std::string PathOf(int entry) const;
    std::string Shown() const { return selected_ > kParent ? PathOf(selected_) : typed_; }
    void Move(int by);
    void Open(int entry);
    void GoUp();
    void Complete();
    void Choose();
    void Type(char32_t character);
    void DeleteCharacter();

    std::string typed_;
    std::vector<std::string> names_;
    int selected_ = kNobody;
    int first_ = 0;         // the entry in the list's first row
    int rows_ = 1;          // of the list, in the last picture
    bool missing_ = false;  // what was to be chosen is not there
    std::optional<std::u16string> chosen_;
    Targets targets_;
};

}  // namespace twr
