// The menu of the dialog's own commands, in place of the one at a window's corner.
#pragma once
#include <optional>
#include <vector>

#include "platform/linux/terminal_layer.h"
#include "platform/linux/terminal_text.h"

namespace twr {

struct MenuItem {
    int command;
    Caption caption;
};

class MenuLayer final : public Layer {
public:
    explicit MenuLayer(const std::vector<MenuItem>& items) : items_(items) {}

    // Nothing when it was left without a choice.
    std::optional<int> Chosen() const { return chosen_; }

    CellSize Needed() const override;
    void Draw(CellSize area, bool topmost) override;
    void OnInput(const Input& input) override;
    std::vector<Hint> Hints() const override;

private:
    void Choose(std::size_t item);

    const std::vector<MenuItem>& items_;
    std::size_t focus_ = 0;
    std::optional<int> chosen_;
    Targets targets_;
};

}  // namespace twr
