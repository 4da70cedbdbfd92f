// What the readers of the user's files pass over, in words that say what to do.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "base/findings.h"

namespace twr {

class CollectedFindings : public Findings {
public:
    void Add(Finding finding) override { found.push_back(std::move(finding)); }

    std::vector<Finding> found;
};

// One line, without the place.
std::string Words(const Finding& finding);

}  // namespace twr
