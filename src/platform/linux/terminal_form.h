// The dialog itself on the screen: its controls, the focus that goes round them in tab order, and its menu.
#pragma once
#include <string_view>
#include <vector>

#include "platform/dialog.h"
#include "platform/linux/terminal_layer.h"
#include "platform/linux/terminal_menu.h"

namespace twr {

class FormLayer final : public Layer {
public:
    // What a press changes is told to `window`, what it means to `dialog`. Menu and folder list are shown by `runner`.
    FormLayer(const DialogTemplate& layout, Dialog& dialog, DialogWindow& window, LayerRunner& runner);

    void AddMenuItem(int command, std::u16string_view text);

    CellSize Needed() const override;
    void Draw(CellSize area, bool topmost) override;
    void OnInput(const Input& input) override;
    std::vector<Hint> Hints() const override;

private:
    const ControlTemplate& Control(std::size_t index) const { return layout_.controls[index]; }
    void DrawControl(Pane& pane, std::size_t index, Cell at, int width, bool focused);
    void MoveFocus(bool forward);
    void OnCharacter(char32_t character);
    void OnEnter();
    void Press(std::size_t index);
    void ShowMenu();
    void ChooseFolder(int control);

    const DialogTemplate& layout_;
    Dialog& dialog_;
    DialogWindow& window_;
    LayerRunner& runner_;
    std::vector<Caption> captions_;
    std::vector<MenuItem> menu_;
    std::size_t focus_ = 0;
    Targets targets_;
};

}  // namespace twr
