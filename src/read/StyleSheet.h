#ifndef VKSVG_READ_STYLESHEET_H
#define VKSVG_READ_STYLESHEET_H

// CSS as SVG documents use it: declaration blocks (the style attribute) and
// style sheets of rules whose selectors are type, class, id, universal and
// attribute-presence selectors, selector lists, and descendant and child
// combinators. At-rules, pseudo-classes, pseudo-elements and other
// combinators are not matched: a rule using them is skipped with a warning.

#include "read/ElementTree.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vk::svg::impl {

using WarningSink = std::function<void(const std::string&)>;

// One "property: value" pair. Both views point into the text that was
// parsed; the value is trimmed and has "!important" removed.
struct CssDeclaration {
    std::string_view property;
    std::string_view value;
    bool important = false;
};

// Appends the well-formed declarations of a declaration block (the text of a
// style attribute, or of a rule between its braces) to `out`, in order.
// Comments are skipped; a malformed declaration is skipped up to the next
// ";" with one warning through `warn`.
void ParseCssDeclarations(std::string_view text, std::vector<CssDeclaration>& out, const WarningSink& warn);

// Specificity as one comparable number: ids, classes and attributes, types.
using Specificity = uint32_t;

// The rules of every style element of one document, indexed for matching.
class StyleSheet {
public:
    StyleSheet();
    ~StyleSheet();
    StyleSheet(const StyleSheet&) = delete;
    StyleSheet& operator=(const StyleSheet&) = delete;

    // Parses one sheet and adds its rules after those already held. The
    // sheet keeps views into `text`, which must outlive it.
    void addSheet(std::string_view text, const WarningSink& warn);

    bool empty() const;

    // Calls `apply` for each declaration of each rule that matches
    // `element`, in no particular order; the caller orders them by
    // importance, specificity and `order` (the rule's position among all
    // rules, counting from 0).
    using Apply = std::function<void(const CssDeclaration& declaration, Specificity specificity, uint32_t order)>;
    void match(const ElementTree& tree, ElementIndex element, const Apply& apply) const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

} // namespace vk::svg::impl

#endif
