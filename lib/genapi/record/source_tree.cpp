#include "record/source_tree.h"

#include <algorithm>
#include <pugixml.hpp>

#include "link/number_text.h"
#include "record/description_text.h"

namespace kiv::genapi {

namespace {

/// Where the lines of a text begin. Parsing in place destroys the line ends, so they are looked for before.
class Lines {
public:
    Lines(std::string_view text, uint32_t first) : first_(first) {
        for (size_t i = 0; i < text.size(); ++i)
            if (text[i] == '\n') ends_.push_back(static_cast<ptrdiff_t>(i));
    }
    uint32_t At(ptrdiff_t offset) const {
        return first_ + static_cast<uint32_t>(std::lower_bound(ends_.begin(), ends_.end(), offset) - ends_.begin());
    }

private:
    std::vector<ptrdiff_t> ends_;
    uint32_t first_;
};

/// Line ends among the blanks in front, which cleaning takes away.
uint32_t leading_lines(std::string_view bytes) {
    const auto start = std::min(bytes.find('<'), bytes.size());
    return static_cast<uint32_t>(std::count(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(start), '\n'));
}

void add(pugi::xml_node element, uint32_t parent, const Lines& lines, SourceTree& tree) {
    SourceElement made;
    made.name = element.name();
    made.parent = parent;
    made.line = lines.At(element.offset_debug());
    made.firstAttribute = static_cast<uint32_t>(tree.attributes.size());
    for (const auto attribute : element.attributes()) tree.attributes.push_back({attribute.name(), trimmed(attribute.value())});
    made.attributeCount = static_cast<uint32_t>(tree.attributes.size()) - made.firstAttribute;
    for (const auto child : element.children())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) made.text += child.value();
    made.text = trimmed(made.text);
    tree.elements.push_back(std::move(made));
}

}  // namespace

/// Walked, not recursed into: elements may be nested to any depth.
void read_source(std::string_view bytes, SourceTree& tree) {
    tree.description = clean_description(std::string(bytes));
    auto& text = tree.description;
    const Lines lines(text, 1 + leading_lines(bytes));
    pugi::xml_document document;
    constexpr unsigned options = pugi::parse_escapes | pugi::parse_cdata;
    if (!document.load_buffer_inplace(text.data(), text.size(), options, pugi::encoding_utf8)) return;
    const auto root = document.document_element();
    std::vector<uint32_t> parents{0};
    for (auto node = root; node;) {
        if (node.type() == pugi::node_element) {
            add(node, parents.back(), lines, tree);
            if (node.first_child()) {
                parents.push_back(static_cast<uint32_t>(tree.elements.size() - 1));
                node = node.first_child();
                continue;
            }
        }
        while (node != root && !node.next_sibling()) node = node.parent(), parents.pop_back();
        node = node == root ? pugi::xml_node() : node.next_sibling();
    }
}

}  // namespace kiv::genapi
