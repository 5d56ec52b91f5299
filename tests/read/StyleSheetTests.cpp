// Declaration blocks and style sheets: what is read, what is dropped with
// which message, which elements each selector reaches with what weight,
// and that no input, however broken, costs more than it should.
#include "read/StyleSheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace vk::svg::impl;

namespace {

struct Collected {
    std::vector<std::string> warnings;
    WarningSink sink = [this](const std::string& text) { warnings.push_back(text); };
};

std::string Show(const CssDeclaration& d)
{
    return std::string(d.property) + ":" + std::string(d.value) + (d.important ? "!" : "");
}

std::vector<std::string> Declarations(const std::string& text, std::vector<std::string>* warnings = nullptr)
{
    Collected collected;
    std::vector<CssDeclaration> out;
    ParseCssDeclarations(text, out, collected.sink);
    std::vector<std::string> shown;
    for (const CssDeclaration& d : out)
        shown.push_back(Show(d));
    if (warnings != nullptr)
        *warnings = collected.warnings;
    return shown;
}

// Matching only walks parent links, so the tree leaves the others out.
struct Doc {
    ElementTree tree;
    std::vector<std::string> labels;

    ElementIndex add(ElementIndex parent, const std::string& label, const std::string& name,
                     const std::vector<TreeAttribute>& attributes = {}, ElementTag tag = ElementTag::Unknown)
    {
        TreeNode node;
        node.tag = tag;
        node.name = name;
        node.parent = parent;
        node.firstAttribute = static_cast<uint32_t>(tree.attributes.size());
        node.attributeCount = static_cast<uint32_t>(attributes.size());
        tree.attributes.insert(tree.attributes.end(), attributes.begin(), attributes.end());
        tree.nodes.push_back(node);
        labels.push_back(label);
        return static_cast<ElementIndex>(tree.nodes.size() - 1);
    }
};

// svg#root.top
//   g#g1.a.b
//     rect#r1.a.c x=1 data-kind="shape big" xlink:href=#lg
//     g.b (inner)
//       circle lang=en-US   (name left to its tag)
//   linearGradient#lg
Doc SmallDocument()
{
    Doc d;
    const ElementIndex svg = d.add(kNoElement, "svg", "svg", {{"id", "root"}, {"class", "top"}});
    const ElementIndex g1 = d.add(svg, "g1", "g", {{"id", "g1"}, {"class", " a\tb "}});
    // clang-format off
    d.add(g1, "rect", "rect", {{"id", "r1"}, {"class", "a c"}, {"x", "1"}, {"data-kind", "shape big"},
                               {"href", "#lg", AttributeSpace::XLink}});
    // clang-format on
    const ElementIndex inner = d.add(g1, "inner", "g", {{"class", "b"}});
    d.add(inner, "circle", "", {{"lang", "en-US"}}, ElementTag::Circle);
    d.add(svg, "lg", "linearGradient", {{"id", "lg"}});
    return d;
}

// Each applied declaration as "property:value[!] ids,classes,types #order", by order.
std::vector<std::string> Applied(const StyleSheet& sheet, const ElementTree& tree, ElementIndex element)
{
    std::vector<std::pair<uint32_t, std::string>> got;
    sheet.match(tree, element, [&](const CssDeclaration& d, Specificity s, uint32_t order) {
        got.emplace_back(order, Show(d) + " " + std::to_string(s >> 20) + "," + std::to_string((s >> 10) & 1023) + "," +
                                    std::to_string(s & 1023) + " #" + std::to_string(order));
    });
    std::stable_sort(got.begin(), got.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> shown;
    for (const auto& g : got)
        shown.push_back(g.second);
    return shown;
}

std::vector<std::string> MatchedLabels(const Doc& doc, const std::string& sheetText, std::vector<std::string>& warnings)
{
    Collected collected;
    StyleSheet sheet;
    sheet.addSheet(sheetText, collected.sink);
    std::vector<std::string> matched;
    for (ElementIndex e = 0; e < doc.tree.nodes.size(); ++e)
        if (!Applied(sheet, doc.tree, e).empty())
            matched.push_back(doc.labels[e]);
    warnings = collected.warnings;
    return matched;
}

} // namespace

TEST(CssDeclarations, ReadsBlocksAsBrowsersDo)
{
    struct Case {
        std::string text;
        std::vector<std::string> declarations;
        std::vector<std::string> warnings;
    };
    // clang-format off
    const Case cases[] = {
        {" fill : red ;stroke:blue", {"fill:red", "stroke:blue"}, {}}, {";; fill:red;;", {"fill:red"}, {}},
        {"fill:red !important; stroke: blue! IMPORTANT ", {"fill:red!", "stroke:blue!"}, {}},
        {"fill: red !/* x */important", {"fill:red!"}, {}},
        {"fill: a!notimportant; b: important", {"fill:a!notimportant", "b:important"}, {}},
        {"/*a*/ fill /*b*/ : /*c*/ red /*d*/; /* e; f */", {"fill:red"}, {}},
        {"fill: url(a;b); font-family: 'x;y', \"p;q\"", {"fill:url(a;b)", "font-family:'x;y', \"p;q\""}, {}},
        {"a: {b;c}; d: [e;f]", {"a:{b;c}", "d:[e;f]"}, {}}, {"a: b\\;c; d: e", {"a:b\\;c", "d:e"}, {}},
        {"a: b:c", {"a:b:c"}, {}}, {"--custom: 1 2", {"--custom:1 2"}, {}}, {"a: b /* open", {"a:b"}, {}},
        // An unescaped newline ends a string; the ";" after it counts.
        {"a: \"x\n; b: y", {"a:\"x", "b:y"}, {}}, {"a: url(b; c: d", {"a:url(b; c: d"}, {}},
        {"xyz; fill: red", {"fill:red"}, {"Ignore malformed style declaration \"xyz\""}},
        {": red", {}, {"Ignore malformed style declaration \": red\""}},
        {"fill:  ;stroke: !important", {}, {"Ignore malformed style declaration \"fill:\"",
                                           "Ignore malformed style declaration \"stroke: !important\""}},
        {"fi ll: red; 1a: b; a(b): c", {}, {"Ignore malformed style declaration \"fi ll: red\"",
                                           "Ignore malformed style declaration \"1a: b\"",
                                           "Ignore malformed style declaration \"a(b): c\""}},
        {"x\n\t y", {}, {"Ignore malformed style declaration \"x y\""}},
        // Quotes stop at 64 bytes, never inside a character.
        {std::string(62, 'x') + "\xC3\xA9zzz", {},
         {"Ignore malformed style declaration \"" + std::string(62, 'x') + "\xC3\xA9...\""}},
        {std::string(63, 'x') + "\xC3\xA9zzz", {},
         {"Ignore malformed style declaration \"" + std::string(63, 'x') + "...\""}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        std::vector<std::string> warnings;
        EXPECT_EQ(Declarations(c.text, &warnings), c.declarations);
        EXPECT_EQ(warnings, c.warnings);
    }
}

TEST(CssDeclarations, CapsTheWarningsOfOneCall)
{
    std::vector<std::string> warnings;
    std::string flood;
    for (int i = 0; i < 1000; ++i)
        flood += "x;";
    Declarations(flood + "fill:red", &warnings);
    ASSERT_EQ(warnings.size(), 101u);
    EXPECT_EQ(warnings.back(), "Ignore further style sheet warnings");
}

TEST(StyleSheet, SelectorsReachTheRightElements)
{
    const Doc doc = SmallDocument();
    struct Case {
        const char* selectors;
        std::vector<std::string> matched;
    };
    // clang-format off
    const Case cases[] = {
        {"rect", {"rect"}}, {"Rect", {}}, {"linearGradient", {"lg"}}, {"circle", {"circle"}},
        {"*", {"svg", "g1", "rect", "inner", "circle", "lg"}}, {".a", {"g1", "rect"}}, {".a.c", {"rect"}},
        {"*.c", {"rect"}}, {".\\61 ", {"g1", "rect"}}, {"#r1", {"rect"}}, {"rect#r1.a", {"rect"}}, {"#r1.b", {}},
        {"[x]", {"rect"}}, {"[href]", {}}, {"[x=\"1\"]", {"rect"}}, {"[x='2']", {}}, {"[ id = lg ]", {"lg"}},
        {"[data-kind~=big]", {"rect"}}, {"[data-kind~=\"shape big\"]", {}}, {"[lang|=en]", {"circle"}},
        {"[lang|=e]", {}}, {"[data-kind^=sh]", {"rect"}}, {"[data-kind$=big]", {"rect"}},
        {"[data-kind*=\"e b\"]", {"rect"}}, {"[lang=EN-us i]", {"circle"}}, {"[lang=EN-us]", {}},
        {"svg circle", {"circle"}}, {"svg > circle", {}}, {"g > circle", {"circle"}}, {"g>rect", {"rect"}},
        {".a > g > circle", {"circle"}}, {"#root > .b > .c", {"rect"}}, {"g g", {"inner"}},
        // The nearest g fails "svg >"; the search must back up to the outer one.
        {"svg > g circle", {"circle"}}, {"g /* c */ g", {"inner"}}, {"#g1 *", {"rect", "inner", "circle"}},
        {".b .a circle", {}}, {".top .b .b circle", {"circle"}}, {"rect, circle", {"rect", "circle"}},
        {"rect , #lg,rect", {"rect", "lg"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.selectors);
        std::vector<std::string> warnings;
        EXPECT_EQ(MatchedLabels(doc, std::string(c.selectors) + " { fill: red }", warnings), c.matched);
        EXPECT_EQ(warnings, std::vector<std::string>{});
    }
}

TEST(StyleSheet, CombinatorsAgreeWithAnExhaustiveSearch)
{
    // A deep random tree where the nearest ancestor of a kind is often the
    // wrong one, so that a matcher must back up to be right.
    std::mt19937 random(7);
    const char* names[] = {"g", "rect", "circle"};
    const char* classes[] = {"", "a", "b", "a b"};
    Doc doc;
    doc.add(kNoElement, "0", "g");
    for (ElementIndex i = 1; i < 80; ++i)
        doc.add(i - 1 - random() % std::min<ElementIndex>(i, 3), std::to_string(i), names[random() % 3],
                {{"class", classes[random() % 4]}});

    struct Part {
        std::string type;
        std::string cls;
        bool child; // whether the part to the left is the parent
    };
    const auto holds = [&](const Part& p, ElementIndex e) {
        const std::string list = " " + std::string(doc.tree.attribute(e, "class")) + " ";
        return (p.type == "*" || doc.tree.node(e).name == p.type) &&
               (p.cls.empty() || list.find(" " + p.cls + " ") != std::string::npos);
    };
    std::function<bool(const std::vector<Part>&, std::size_t, ElementIndex)> reference =
        [&](const std::vector<Part>& parts, std::size_t k, ElementIndex e) {
            if (!holds(parts[k], e))
                return false;
            if (k + 1 == parts.size())
                return true;
            for (ElementIndex a = doc.tree.node(e).parent; a != kNoElement; a = doc.tree.node(a).parent) {
                if (reference(parts, k + 1, a))
                    return true;
                if (parts[k].child)
                    break;
            }
            return false;
        };

    const char* types[] = {"g", "rect", "circle", "*"};
    for (int round = 0; round < 400; ++round) {
        std::vector<Part> parts(1 + random() % 5); // rightmost first
        for (Part& p : parts)
            p = {types[random() % 4], classes[random() % 3], random() % 2 == 0};
        std::string text;
        for (std::size_t k = parts.size(); k-- > 0;) {
            text += parts[k].type + (parts[k].cls.empty() ? "" : "." + parts[k].cls);
            if (k > 0)
                text += parts[k - 1].child ? " > " : " ";
        }
        text += " { fill: x }";
        Collected collected;
        StyleSheet sheet;
        sheet.addSheet(text, collected.sink);
        ASSERT_EQ(collected.warnings, std::vector<std::string>{}) << text;
        for (ElementIndex e = 0; e < doc.tree.nodes.size(); ++e)
            EXPECT_EQ(!Applied(sheet, doc.tree, e).empty(), reference(parts, 0, e)) << text << " on " << e;
    }
}

TEST(StyleSheet, GivesSpecificityAndOrderPerRule)
{
    const Doc doc = SmallDocument();
    Collected collected;
    StyleSheet sheet;
    EXPECT_TRUE(sheet.empty());
    sheet.addSheet("rect { fill: a } #r1 { fill: b } .a.c { fill: c !important; opacity: .5; opacity: .6 }\n"
                   "rect, #r1.a, [x] { stroke: d } circle { fill: e }",
                   collected.sink);
    sheet.addSheet("svg > g > rect { fill: f }", collected.sink);
    EXPECT_FALSE(sheet.empty());
    const std::vector<std::string> expected = {
        "fill:a 0,0,1 #0",     "fill:b 1,0,0 #1", "fill:c! 0,2,0 #2", "opacity:.5 0,2,0 #2",
        "opacity:.6 0,2,0 #2", // in written order within a rule
        "stroke:d 1,1,0 #3",   // the best of the three selectors
        "fill:f 0,0,3 #5",
    };
    EXPECT_EQ(Applied(sheet, doc.tree, 2), expected);
    EXPECT_EQ(collected.warnings, std::vector<std::string>{});
}

TEST(StyleSheet, SkipsWhatItCannotMatchWithOneWarning)
{
    const Doc doc = SmallDocument();
    const ElementIndex rect = 2;
    struct Case {
        const char* sheet;
        std::vector<std::string> applied; // to the rect
        std::vector<std::string> warnings;
    };
    // clang-format off
    const Case cases[] = {
        {"<!-- rect { fill: a } -->", {"fill:a 0,0,1 #0"}, {}},
        {"/* <![CDATA[ */ rect { fill: a } /* ]]> */", {"fill:a 0,0,1 #0"}, {}},
        {"@charset \"utf-8\"; rect { fill: a }", {"fill:a 0,0,1 #0"}, {}},
        {"@media screen { rect { fill: a } } rect { stroke: b }", {"stroke:b 0,0,1 #0"},
         {"Ignore unsupported style rule \"@media\""}},
        {"@import url(x;y.css); @font-face { src: url(\"}\") } rect { fill: a }", {"fill:a 0,0,1 #0"},
         {"Ignore unsupported style rule \"@import\"", "Ignore unsupported style rule \"@font-face\""}},
        {"rect { fill: a } @media print { rect {", {"fill:a 0,0,1 #0"},
         {"Ignore unsupported style rule \"@media\""}},
        {"rect:hover { fill: a } rect { stroke: b }", {"stroke:b 0,0,1 #0"},
         {"Ignore unsupported selector \"rect:hover\""}},
        {"circle, g + rect, rect { fill: a }", {}, {"Ignore unsupported selector \"g + rect\""}},
        {"rect, { fill: a }", {}, {"Ignore unsupported selector \"rect,\""}},
        {"{ fill: a } rect { stroke: b }", {"stroke:b 0,0,1 #0"}, {"Ignore malformed style rule \"{ fill: a }\""}},
        // A stray "}" joins the next prelude, as in CSS.
        {"} rect { fill: a }", {}, {"Ignore unsupported selector \"} rect\""}},
        {"rect { fill: a", {}, {"Ignore malformed style rule \"rect { fill: a\""}},
        {"rect { fill: a } circle", {"fill:a 0,0,1 #0"}, {"Ignore malformed style rule \"circle\""}},
        {"rect { fill: \"}\"; stroke: b; junk }", {"fill:\"}\" 0,0,1 #0", "stroke:b 0,0,1 #0"},
         {"Ignore malformed style declaration \"junk\""}},
        {"rect { x { y: z } }", {}, {"Ignore malformed style declaration \"x { y: z }\""}},
        {"rect { }", {}, {}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sheet);
        Collected collected;
        StyleSheet sheet;
        sheet.addSheet(c.sheet, collected.sink);
        EXPECT_EQ(Applied(sheet, doc.tree, rect), c.applied);
        EXPECT_EQ(collected.warnings, c.warnings);
    }
    // Any one of these drops the whole list it is in.
    for (const char* selector : {"g ~ rect", "rect::before", ":root", "svg|rect", "[xlink|href]", "#1r", ".2", "[x=]",
                                 "[x=1 q]", "rect#", "rect >", "rect/**/rect", "rect !"}) {
        SCOPED_TRACE(selector);
        const std::string text = std::string("rect, ") + selector + " { fill: a }";
        Collected collected;
        StyleSheet sheet;
        sheet.addSheet(text, collected.sink);
        EXPECT_TRUE(sheet.empty());
        EXPECT_EQ(collected.warnings,
                  std::vector<std::string>{"Ignore unsupported selector \"" + std::string(selector) + "\""});
    }
}

TEST(StyleSheet, StopsMatchingOnceTheWorkIsTooMuch)
{
    // Each "[x] *" walks to the root from every element of a chain whose
    // elements carry many attributes, so the work grows with depth squared.
    std::vector<TreeAttribute> attributes;
    for (int i = 0; i < 200; ++i)
        attributes.push_back({"p" + std::to_string(i), ""});
    Doc doc;
    ElementIndex last = doc.add(kNoElement, "svg", "svg");
    for (int i = 0; i < 300; ++i)
        last = doc.add(last, "g", "g", attributes);
    std::string text = "g { fill: a }";
    for (int i = 0; i < 20; ++i)
        text += " [x" + std::to_string(i) + "] * { fill: b }";
    Collected collected;
    StyleSheet sheet;
    sheet.addSheet(text, collected.sink);
    std::size_t lastMatched = 0;
    for (ElementIndex e = 0; e < doc.tree.nodes.size(); ++e)
        if (!Applied(sheet, doc.tree, e).empty())
            lastMatched = e;
    EXPECT_EQ(collected.warnings, std::vector<std::string>{"Stop matching style rules: too many selector tests"});
    EXPECT_GT(lastMatched, 50u);
    EXPECT_LT(lastMatched, 300u);
    EXPECT_TRUE(Applied(sheet, doc.tree, 1).empty());
}

TEST(StyleSheet, SurvivesGarbageAndTruncation)
{
    const Doc doc = SmallDocument();
    const auto run = [&](const std::string& text, std::vector<std::string>& applied) {
        Collected collected;
        StyleSheet sheet;
        sheet.addSheet(text, collected.sink);
        applied.clear();
        for (ElementIndex e = 0; e < doc.tree.nodes.size(); ++e)
            for (const std::string& a : Applied(sheet, doc.tree, e))
                applied.push_back(doc.labels[e] + " " + a);
        std::vector<CssDeclaration> declarations;
        ParseCssDeclarations(text, declarations, collected.sink);
        return collected.warnings.size();
    };

    std::mt19937 random(20240611);
    const std::string alphabet = std::string("{}()[];:,.#*>+~@!'\"\\/ \n-_aZ09<=|^$") + '\0' + "\x80\xC3\xFF";
    std::vector<std::string> applied;
    for (int i = 0; i < 3000; ++i) {
        std::string text(random() % 120, ' ');
        for (char& c : text)
            c = alphabet[random() % alphabet.size()];
        EXPECT_LE(run(text, applied), 202u) << text;
    }
    EXPECT_LE(run(std::string(200000, '{'), applied), 2u);
    EXPECT_LE(run("rect{a:" + std::string(200000, '('), applied), 2u);
    EXPECT_LE(run(std::string(200000, '['), applied), 2u);
    EXPECT_LE(run("/*" + std::string(100000, '*'), applied), 0u);

    // Longer prefixes apply more, up to the whole sheet, with at most one
    // warning more than it.
    const std::string sheet = "<!--/* <![CDATA[ */\n"
                              "@media print { rect { fill: none } }\n"
                              "rect, .b > circle { fill: url(\"a;}b\") !important; stroke: blue }\n"
                              "#g1 [data-kind~=big] { stroke-width: 2 }\n"
                              "g:hover { fill: green }\n"
                              "* { opacity: .5 } /* ]]> */ -->";
    std::vector<std::string> full, previous;
    const std::size_t fullWarnings = run(sheet, full);
    EXPECT_EQ(full.size(), 11u);
    for (std::size_t cut = 0; cut <= sheet.size(); ++cut) {
        SCOPED_TRACE(cut);
        EXPECT_LE(run(sheet.substr(0, cut), applied), fullWarnings + 1);
        std::sort(applied.begin(), applied.end());
        EXPECT_TRUE(std::includes(applied.begin(), applied.end(), previous.begin(), previous.end()));
        previous = applied;
    }
    std::sort(full.begin(), full.end());
    EXPECT_EQ(previous, full);
}
