// SPDX-License-Identifier: MIT
#include "mapping/mapping_text.h"

#include <gtest/gtest.h>

namespace twr::testing {
namespace {

std::string Added(const std::string& text, const char* kind) {
    const auto elements = FindElements(text);
    return elements ? WithElement(text, *elements, kind, "<NEW/>") : "refused";
}

// Without every element of the name `gone`.
std::string Removed(const std::string& text) {
    const auto elements = FindElements(text);
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < elements->size(); ++i) {
        if (LocalName((*elements)[i]) != "gone") continue;
        if (!IsRemovable(text, *elements, i)) return "refused";
        indices.push_back(i);
    }
    return WithoutElements(text, *elements, indices);
}

TEST(MappingTextTest, AnAddedLineStandsBehindThoseOfItsKind) {
    const std::vector<const char*> rows[] = {
        {"var", "<r>\n  <var/>\n  <remote/>\n</r>", "<r>\n  <var/>\n  <NEW/>\n  <remote/>\n</r>"},
        {"var", "<r>\r\n\t<VAR a='>'/>\r\n</r>\r\n", "<r>\r\n\t<VAR a='>'/>\r\n\t<NEW/>\r\n</r>\r\n"},
        {"var", "<r>\n <p:var></p:var> <!-- a -->  <!--b-->\n</r>", "<r>\n <p:var></p:var> <!-- a -->  <!--b-->\n <NEW/>\n</r>"},
        {"var", "<r>\n <var/> <!-- two\nlines -->\n</r>", "<r>\n <var/>\n <NEW/> <!-- two\nlines -->\n</r>"},
        {"var", "<r>\n <var/> <x/>\n</r>", "<r>\n <var/>\n <NEW/> <x/>\n</r>"},
        {"var", "<r><var/><remote/></r>", "<r><var/><NEW/><remote/></r>"},
        {"var", "<r>\n<!-- <var/> --><![CDATA[<var/>]]><?var <var/> ?>\n</r>",
         "<r>\n<!-- <var/> --><![CDATA[<var/>]]><?var <var/> ?>\n  <NEW/>\n</r>"},
        {"remote", "<r>\n    <var/>\n</r>", "<r>\n    <var/>\n    <NEW/>\n</r>"},
        {"remote", "<?xml?>\r\n<r></r>", "<?xml?>\r\n<r>\r\n  <NEW/>\r\n</r>"},
        {"remote", "\xEF\xBB\xBF<r a=\"/>\" />", "\xEF\xBB\xBF<r a=\"/>\">\n  <NEW/>\n</r>"},
        {"var", "<var/>", "<var>\n  <NEW/>\n</var>"},
        {"var", "<!DOCTYPE r><r/>", "refused"},
        {"var", "<r><var></r>", "refused"},
        {"var", "<r></r></r>", "refused"},
        {"var", "<r><!-- ", "refused"},
    };
    for (const auto& row : rows) EXPECT_EQ(row[2], Added(row[1], row[0])) << row[1];
}

TEST(MappingTextTest, ARemovedElementTakesOnlyItsOwnLine) {
    const std::pair<const char*, const char*> rows[] = {
        {"<r>\n  <gone/>\n  <var/>\n</r>", "<r>\n  <var/>\n</r>"},
        {"<r>\r\n  <gone\r\n a=''> </gone> \r\n</r>", "<r>\r\n</r>"},
        {"<r>\n  <gone/> <!-- why -->\n</r>", "<r>\n   <!-- why -->\n</r>"},
        {"<r>\n  <gone/> <gone/>\n</r>", "<r>\n</r>"},
        {"<r><gone/><var/><gone/></r>", "<r><var/></r>"},
        {"<r><gone>text</gone></r>", "refused"},
        {"<r><gone><!-- why --></gone></r>", "refused"},
        {"<gone/>", "refused"},
    };
    for (const auto& [text, left] : rows) EXPECT_EQ(left, Removed(text)) << text;
}

TEST(MappingTextTest, AVariableGoesByItsNameIfThatFindsIt) {
    const auto variable = [](std::int32_t id, const char16_t* name) {
        MappingVar row;
        row.channel = 13;
        row.boat = id == 2 ? 2 : 0;
        row.dfwId = id;
        row.dfwName = name;
        return row;
    };
    const std::vector<MappingVar> rows = {variable(1, u"HDG"), variable(2, u"A&\u00E9"), variable(3, u"12V"), variable(4, u"HDG")};
    const std::vector<DeckmanVariable> list(rows.begin(), rows.end());
    const char* written[] = {R"(dfw="HDG" />)", R"(dfw="A&#38;&#233;" boat="2" />)", R"(dfw="3" />)", R"(dfw="4" />)"};
    for (std::size_t i = 0; i < list.size(); ++i) EXPECT_EQ(std::string("<var twr=\"13\" ") + written[i], VarText(rows[i], list));
}

}  // namespace
}  // namespace twr::testing
