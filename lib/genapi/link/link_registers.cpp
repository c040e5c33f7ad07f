// Where registers stand and how they may be used.
#include "link/link_context.h"
#include "link/number_text.h"
#include "nodes/port_node.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

/// Spellings that are found beside those of the standard.
EAccessMode access_mode_of(std::string_view text) {
    for (const std::string_view word : {"R/W", "ReadWrite", "rw"})
        if (text == word) return RW;
    for (const std::string_view word : {"R", "ReadOnly", "ro"})
        if (text == word) return RO;
    for (const std::string_view word : {"W", "WriteOnly", "wo"})
        if (text == word) return WO;
    auto mode = RO;
    EAccessModeClass::FromString(text, &mode);
    return mode;
}

size_t hash_of(const PortNode& port, int64_t base, const std::vector<AddressTerm>& terms, const Setting<int64_t>& length) {
    size_t hash = std::hash<const void*>()(&port);
    const auto mix = [&](size_t more) { hash = (hash ^ more) * 0x9E3779B97F4A7C15u, hash ^= hash >> 29; };
    mix(static_cast<size_t>(base));
    mix(static_cast<size_t>(length.Immediate()));
    mix(std::hash<const void*>()(length.Target()));
    for (const auto& term : terms) mix(std::hash<const void*>()(term.node)), mix(static_cast<size_t>(term.stride.Immediate()));
    return hash;
}

bool same_terms(std::span<const AddressTerm> a, std::span<const AddressTerm> b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i].node != b[i].node || a[i].isIndex != b[i].isIndex || !(a[i].stride == b[i].stride)) return false;
    return true;
}

int64_t plus(int64_t a, int64_t b) { return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b)); }

}  // namespace

Location& LinkContext::FindOrMakeLocation(PortNode& port, int64_t base, std::vector<AddressTerm> terms, Setting<int64_t> length) {
    const auto hash = hash_of(port, base, terms, length);
    const auto [first, last] = locations_.equal_range(hash);
    for (auto it = first; it != last; ++it) {
        auto& known = *it->second;
        if (known.Base() == base && &known.Port() == &port && known.LengthSetting() == length && same_terms(known.Terms(), terms))
            return known;
    }
    const auto vertex = static_cast<uint32_t>(engine.nodes.size() + engine.locations.size());
    auto& made = engine.arena.Make<Location>(engine, vertex, port, base, std::move(terms), length);
    engine.locations.push_back(&made);
    locations_.emplace(hash, &made);
    auto& graph = engine.graph;
    graph.Add(port.Index(), vertex, Link::Invalidator);
    if (auto* node = length.Target()) graph.Add(node->Index(), vertex, Link::Place);
    for (const auto& term : made.Terms()) {
        graph.Add(term.node->Index(), vertex, Link::Place);
        if (auto* stride = term.stride.Target()) graph.Add(stride->Index(), vertex, Link::Place);
    }
    return made;
}

void LinkContext::FillAccess(Node& node, RegisterAccess& access) {
    constexpr int64_t longest = 64 * 1024 * 1024;
    const auto element = node.GetRecord().element;
    int64_t base = 0;
    std::vector<AddressTerm> terms;
    bool hasAddress = false;
    for (const auto& property : engine.table.Properties(node.GetRecord())) {
        switch (property.tag) {
            case Tag::Address:
                base = plus(base, NumberOf<int64_t>(property.Text(), property.tag));
                break;
            case Tag::pAddress:
            case Tag::IntSwissKnife:
                terms.push_back({&Required(node, property), false, {}});
                break;
            case Tag::pIndex: {
                AddressTerm term{&Required(node, property), true, {}};
                if (property.attribute == Attribute::Offset)
                    term.stride = Setting<int64_t>(NumberOf<int64_t>(property.AttributeText(), property.tag));
                if (property.attribute == Attribute::pOffset) {
                    auto* stride = engine.Find(property.AttributeText());
                    if (!stride) throw LinkError("pOffset '" + std::string(property.AttributeText()) + "' does not exist.");
                    term.stride = Setting<int64_t>(*stride);
                }
                terms.push_back(term);
                break;
            }
            default:
                continue;
        }
        hasAddress = true;
    }
    if (!hasAddress) throw LinkError("It has no address.");
    const auto length = Number<int64_t>(node, Tag::Length, Tag::pLength);
    if (!length) throw LinkError("It has no length.");
    if (!length.IsReference() && (length.Immediate() < 0 || length.Immediate() > longest))
        throw LinkError("Its length of " + std::to_string(length.Immediate()) + " bytes is not possible.");
    auto* port = dynamic_cast<PortNode*>(&Required(node, Tag::pPort));
    if (!port) throw LinkError("pPort '" + std::string(node.Text(Tag::pPort)) + "' is no port.");

    const auto* mode = node.Find(Tag::AccessMode);
    access.mode = mode ? access_mode_of(mode->Text()) : element == Element::ConfRom ? RO : RW;
    access.caching = element == Element::FloatReg ? WriteAround : WriteThrough;
    ECachingModeClass::FromString(node.Text(Tag::Cachable), &access.caching);
    access.bigEndian = equal_ignoring_case(node.Text(Tag::Endianess), "BigEndian");
    auto& location = FindOrMakeLocation(*port, base, std::move(terms), length);
    engine.graph.Add(location.Vertex(), node.Index(), Link::Bytes);
    engine.graph.Add(node.Index(), location.Vertex(), Link::Origin);
    access.location = &location;
}

}  // namespace kiv::genapi
