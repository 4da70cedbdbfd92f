// What stands on the screen: the dialog below, and on it a box, a menu or the folder list. The topmost takes all input.
#pragma once
#include <string>
#include <vector>

#include "platform/linux/terminal_input.h"
#include "platform/linux/terminal_screen.h"

namespace twr {

// A key and what it does, for the line at the foot. A press there does the same.
struct Hint {
    std::wstring_view key, effect;
    Input input;
};

class Layer {
public:
    virtual ~Layer() = default;

    // The smallest area that it can be drawn in.
    virtual CellSize Needed() const = 0;
    virtual void Draw(CellSize area, bool topmost) = 0;
    virtual void OnInput(const Input& input) = 0;
    virtual std::vector<Hint> Hints() const = 0;

    bool Closed() const { return closed_; }

protected:
    void Close() { closed_ = true; }

private:
    bool closed_ = false;
};

// Shows a layer on top of all others until it has closed, or the dialog below has ended.
class LayerRunner {
public:
    virtual ~LayerRunner() = default;
    virtual void Run(Layer& layer) = 0;
};

// Where the last picture has put the things that a press can hit.
class Targets {
public:
    void Clear() { spans_.clear(); }
    void Add(int index, Cell at, int width) { spans_.push_back({index, at, width}); }

    // The index of the thing there; -1 where there is none.
    int At(Cell cell) const {
        for (const Span& span : spans_) {
            const int offset = cell.column - span.at.column;
            if (cell.row == span.at.row && offset >= 0 && offset < span.width) return span.index;
        }
        return -1;
    }

private:
    struct Span {
        int index;
        Cell at;
        int width;
    };

    std::vector<Span> spans_;
};

}  // namespace twr
