// A message with its buttons on top of the dialog.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop.h"
#include "platform/linux/terminal_layer.h"

namespace twr {

class BoxLayer final : public Layer {
public:
    BoxLayer(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon);

    // kNone until it has been answered.
    BoxAnswer Answer() const { return answer_; }

    CellSize Needed() const override;
    void Draw(CellSize area, bool topmost) override;
    void OnInput(const Input& input) override;
    std::vector<Hint> Hints() const override;

private:
    struct Button {
        std::wstring_view caption;
        char32_t key;
        BoxAnswer answer;
    };

    CellSize SizeIn(int columns, const std::vector<std::wstring>& lines) const;
    int ButtonsWidth() const;
    void Give(BoxAnswer answer);

    const std::u16string text_;
    const std::u16string caption_;
    const BoxIcon icon_;
    std::vector<Button> buttons_;
    std::size_t focus_ = 0;
    BoxAnswer answer_ = BoxAnswer::kNone;
    Targets targets_;
};

}  // namespace twr
