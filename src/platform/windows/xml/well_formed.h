// Faults of an XML document that show in its characters alone.
#pragma once
#include <string_view>

namespace twr {

// The document up to its first character, reference or half of a surrogate pair that XML doesn't allow. It has no declarations of
// entities, so that only the five that are built in count.
std::u16string_view WellFormedPrefix(std::u16string_view document);

}  // namespace twr
