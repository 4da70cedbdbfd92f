// A Deckman library controlled by a test: its variables can be set, its calls are recorded.
#pragma once
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/library.h"

namespace twr::testing {

// Only one at a time: the library's functions take no object.
class StubDeckman : public Libraries {
public:
    StubDeckman();
    ~StubDeckman() override;

    std::unique_ptr<Library> Load(std::u16string_view path) override;

    void Install(std::u16string_view folder);  // puts a library there

    std::set<std::string> missing;  // exports that it lacks
    std::map<int, float> variables;
    float latitude = 0.0f, longitude = 0.0f;

    std::vector<int> reads;         // variable numbers, in order
    int positions = 0;              // calls for the position
    std::vector<std::string> sent;  // texts to remotes: "number=text", names as "number#text"
    int loaded = 0;                 // libraries now loaded

private:
    std::set<std::u16string> installed_;  // paths at which a library is found
};

}  // namespace twr::testing
