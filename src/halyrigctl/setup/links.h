// The links of a chain: each holds, or is broken, or lies behind the broken one.
#pragma once
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "halyrigctl/output/say.h"

namespace twr {

enum class LinkState {
    kHolds,
    kBroken,  // the first one; it is the reason
    kBehind,  // not judged: behind the broken one
};

struct Link {
    const char* name;
    LinkState state;
    Advice says;
};

class Links {
public:
    void Hold(const char* name, std::string says) { Add(name, LinkState::kHolds, {std::move(says)}); }
    void Break(const char* name, Advice says) {
        Add(name, LinkState::kBroken, std::move(says));
        if (!fault_) fault_ = all_.back().says;
    }
    // Breaks if there is a fault.
    void Judge(const char* name, Advice fault, std::string elseSays) {
        if (fault) {
            Break(name, std::move(fault));
        } else {
            Hold(name, std::move(elseSays));
        }
    }

    const std::vector<Link>& All() const { return all_; }
    // The broken link's name; empty if all hold.
    std::string_view Broken() const {
        const auto broken = std::ranges::find(all_, LinkState::kBroken, &Link::state);
        return broken == all_.end() ? std::string_view() : broken->name;
    }
    // What it says; nothing if all hold.
    const Advice& Fault() const { return fault_; }

private:
    void Add(const char* name, LinkState state, Advice says) {
        all_.push_back({name, fault_ ? LinkState::kBehind : state, std::move(says)});
    }

    std::vector<Link> all_;
    Advice fault_;
};

}  // namespace twr
