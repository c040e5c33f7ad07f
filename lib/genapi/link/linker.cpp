#include "link/linker.h"

#include <algorithm>
#include <utility>

#include "link/link_context.h"
#include "link/link_dependencies.h"
#include "link/number_text.h"
#include "nodes/enumeration_node.h"
#include "nodes/number_node.h"
#include "nodes/port_node.h"
#include "nodes/register_node.h"
#include "nodes/simple_nodes.h"
#include "nodes/string_node.h"
#include "nodes/switch_nodes.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

// ---- one function for each way to get a value ----

using IntegerRegister = WithRegister<IntegerNode>;
using FloatRegisterNode = WithRegister<FloatNode>;
using StringRegister = WithRegister<StringNode>;

void nothing_to_connect(LinkContext&, Node&) {}

template <class Shown, class T>
void connect_plain(LinkContext& context, Node& node) {
    static_cast<Shown&>(node).source_ = &context.MakeSource<T>(node);
}

template <class Shown, class T>
void connect_knife(LinkContext& context, Node& node) {
    if (node.Text(Tag::Formula).empty()) throw LinkError("It has no formula.");
    static_cast<Shown&>(node).source_ = &context.engine.arena.Make<KnifeSource<T>>(context.Variables(node));
}

template <class Shown, class T>
void connect_converter(LinkContext& context, Node& node) {
    if (node.Text(Tag::FormulaTo).empty() || node.Text(Tag::FormulaFrom).empty()) throw LinkError("It lacks a formula.");
    auto slope = Automatic;
    ESlopeClass::FromString(node.Text(Tag::Slope), &slope);
    static_cast<Shown&>(node).source_ = &context.engine.arena.Make<ConverterSource<T>>(
        context.Required(node, Tag::pValue), context.Variables(node), slope, context.Boolean(node, Tag::IsLinear, false));
}

void connect_integer_register(LinkContext& context, Node& node) {
    auto& shown = static_cast<IntegerRegister&>(node);
    context.FillAccess(node, shown.Access());
    IntegerField::Bits bits;
    if (node.GetRecord().element == Element::MaskedIntReg) {
        const auto bit = context.Integer(node, Tag::Bit, -1);
        bits = {context.Integer(node, Tag::LSB, bit), context.Integer(node, Tag::MSB, bit)};
        if (bits.lsb < 0 || bits.msb < 0 || bits.lsb > 63 || bits.msb > 63) throw LinkError("It does not say which bits it has.");
    }
    const bool isSigned = equal_ignoring_case(node.Text(Tag::Sign), "Signed");
    shown.source_ = &context.engine.arena.Make<IntegerField>(shown.Access(), bits, isSigned);
}

void connect_float_register(LinkContext& context, Node& node) {
    auto& shown = static_cast<FloatRegisterNode&>(node);
    context.FillAccess(node, shown.Access());
    shown.source_ = &context.engine.arena.Make<FloatRegister>(shown.Access());
}

void connect_string_register(LinkContext& context, Node& node) {
    auto& shown = static_cast<StringRegister&>(node);
    context.FillAccess(node, shown.Access());
    shown.source_ = &context.engine.arena.Make<TextRegister>(shown.Access());
}

void connect_register(LinkContext& context, Node& node) { context.FillAccess(node, static_cast<RegisterNode&>(node).Access()); }

void connect_string(LinkContext& context, Node& node) {
    auto& shown = static_cast<StringNode&>(node);
    if (node.Find(Tag::pValue))
        shown.source_ = &context.engine.arena.Make<NodeText>(context.Required(node, Tag::pValue));
    else
        shown.source_ = &context.engine.arena.Make<StoredText>(trimmed(node.Text(Tag::Value)));
}

void connect_boolean(LinkContext& context, Node& node) {
    auto& shown = static_cast<BooleanNode&>(node);
    shown.on_ = context.Integer(node, Tag::OnValue, 1);
    shown.off_ = context.Integer(node, Tag::OffValue, 0);
    const auto* value = node.Find(Tag::Value);
    const auto word = value && !node.Find(Tag::pValue) ? parse_boolean(value->Text()) : std::nullopt;
    if (word)
        shown.source_ = &context.engine.arena.Make<StoredSource<int64_t>>(*word ? shown.on_ : shown.off_);
    else
        shown.source_ = &context.MakeSource<int64_t>(node);
}

void connect_command(LinkContext& context, Node& node) {
    auto& shown = static_cast<CommandNode&>(node);
    shown.command_ = context.Number<int64_t>(node, Tag::CommandValue, Tag::pCommandValue);
    if (!shown.command_) throw LinkError("It has no CommandValue.");
    shown.isStored_ = !node.Find(Tag::pValue);
    shown.source_ = &context.MakeSource<int64_t>(node);
}

void connect_enumeration(LinkContext& context, Node& node) {
    auto& shown = static_cast<EnumerationNode&>(node);
    for (const auto& property : context.engine.table.Properties(node.GetRecord())) {
        if (property.tag != Tag::pEnumEntry) continue;
        if (auto* entry = dynamic_cast<EnumEntryNode*>(node.Target(&property))) shown.entries_.push_back(entry);
    }
    for (const auto* entry : shown.entries_) shown.hasSelfClearing_ |= entry->isSelfClearing_;
    shown.source_ = &context.MakeSource<int64_t>(node);
}

void connect_port(LinkContext& context, Node& node) {
    static_cast<PortNode&>(node).SetSwap(context.Boolean(node, Tag::SwapEndianess, false));
}

/// Entries are complete before anything is connected: formulas may ask for their values.
void complete_entry(LinkContext& context, EnumEntryNode& entry) {
    entry.value_ = context.Integer(entry, Tag::Value, 0);
    if (!entry.Find(Tag::Value)) throw LinkError("It has no value.");
    const auto* numeric = entry.Find(Tag::NumericValue);
    entry.numericValue_ =
        numeric ? context.NumberOf<double>(numeric->Text(), Tag::NumericValue) : static_cast<double>(entry.value_);
    entry.isSelfClearing_ = context.Boolean(entry, Tag::IsSelfClearing, false);
}

// ---- the elements ----

template <class Made>
Node& make(LinkContext& context, uint32_t index) {
    auto& made = context.engine.arena.Make<Made>(context.engine, index);
    if constexpr (std::is_base_of_v<FloatNode, Made>)
        made.source_ = &context.NoNumber<double>();
    else if constexpr (std::is_base_of_v<StringNode, Made>)
        made.source_ = &context.engine.arena.Make<NoText>();
    else if constexpr (requires { made.source_; })
        made.source_ = &context.NoNumber<int64_t>();
    return made;
}

struct ElementRow {
    Element element;
    Node& (*make)(LinkContext&, uint32_t);
    void (*connect)(LinkContext&, Node&);
};

constexpr ElementRow elementRows[] = {
    {Element::Node, make<PlainNode>, nothing_to_connect},
    {Element::Category, make<CategoryNode>, nothing_to_connect},
    {Element::Integer, make<IntegerNode>, connect_plain<IntegerNode, int64_t>},
    {Element::IntReg, make<IntegerRegister>, connect_integer_register},
    {Element::MaskedIntReg, make<IntegerRegister>, connect_integer_register},
    {Element::StructReg, nullptr, nullptr},  // the reader has made masked registers of it
    {Element::StructEntry, nullptr, nullptr},
    {Element::IntSwissKnife, make<IntegerNode>, connect_knife<IntegerNode, int64_t>},
    {Element::IntConverter, make<IntegerNode>, connect_converter<IntegerNode, int64_t>},
    {Element::Boolean, make<BooleanNode>, connect_boolean},
    {Element::Command, make<CommandNode>, connect_command},
    {Element::Enumeration, make<EnumerationNode>, connect_enumeration},
    {Element::EnumEntry, make<EnumEntryNode>, nothing_to_connect},
    {Element::Float, make<FloatNode>, connect_plain<FloatNode, double>},
    {Element::FloatReg, make<FloatRegisterNode>, connect_float_register},
    {Element::SwissKnife, make<FloatNode>, connect_knife<FloatNode, double>},
    {Element::Converter, make<FloatNode>, connect_converter<FloatNode, double>},
    {Element::String, make<StringNode>, connect_string},
    {Element::StringReg, make<StringRegister>, connect_string_register},
    {Element::Register, make<RegisterNode>, connect_register},
    {Element::Port, make<PortNode>, connect_port},
    {Element::ConfRom, make<RegisterNode>, connect_register},
    {Element::TextDesc, make<StringNode>, nothing_to_connect},
    {Element::IntKey, make<IntegerNode>, nothing_to_connect},
    {Element::AdvFeatureLock, make<RegisterNode>, connect_register},
    {Element::SmartFeature, make<IntegerNode>, nothing_to_connect},
};
static_assert(
    [] {
        for (size_t i = 0; i < std::size(elementRows); ++i)
            if (static_cast<size_t>(elementRows[i].element) != i) return false;
        return std::size(elementRows) == static_cast<size_t>(Element::Group);
    }(),
    "elementRows is indexed by the element");

constexpr TagSet conditionTags{Tag::pIsImplemented, Tag::pIsAvailable, Tag::pIsLocked};
constexpr TagSet ruleTags{Tag::Min, Tag::pMin, Tag::Max, Tag::pMax, Tag::Inc, Tag::pInc, Tag::ValidValueSet, Tag::ValidValuesSet};

class Linker {
public:
    explicit Linker(Engine& engine) : engine_(engine), context_(engine) {}

    void Run() {
        NameRecords();
        MakeNodes();
        ResolveReferences();
        for (auto* node : engine_.nodes) Guarded(*node, [&] { Connect(*node); });
        link_dependencies(engine_);
        engine_.locationIndex.Build(engine_.locations);
    }

private:
    template <class Body>
    void Guarded(Node& node, Body body) {
        try {
            body();
        } catch (const LinkError& error) {
            engine_.faults.emplace(&node, error.what());
            engine_.table.faults.push_back("Node '" + std::string(node.Name()) + "': " + error.what());
        }
    }

    /// Of two nodes of one name the first one stays. Entries stay in any case: they are found through their enumeration.
    void NameRecords() {
        auto& records = engine_.table.records;
        engine_.names.Reserve(records.size());
        std::vector<uint32_t> moved(records.size(), nothing);
        uint32_t kept = 0;
        for (uint32_t i = 0; i < records.size(); ++i) {
            auto record = records[i];
            if (record.owner != nothing && (record.owner = moved[record.owner]) == nothing) continue;
            records[kept] = record;
            if (engine_.names.Add(kept, records) != nothing) {
                engine_.table.faults.push_back("Node '" + std::string(record.name) + "' is there twice; the first one counts.");
                if (record.owner == nothing) continue;
            }
            moved[i] = kept++;
        }
        records.resize(kept);
    }

    void MakeNodes() {
        const auto& records = engine_.table.records;
        engine_.nodes.reserve(records.size());
        engine_.arena.Reserve(3 * records.size());  // a node, its source, its location
        for (uint32_t i = 0; i < records.size(); ++i) {
            auto& node = elementRows[static_cast<size_t>(records[i].element)].make(context_, i);
            engine_.nodes.push_back(&node);
            if (records[i].element != Element::EnumEntry) continue;
            auto& entry = static_cast<EnumEntryNode&>(node);
            Guarded(entry, [&] { complete_entry(context_, entry); });
            if (records[i].owner != nothing)
                static_cast<EnumerationNode*>(engine_.nodes[records[i].owner])->entries_.push_back(&entry);
        }
    }

    void ResolveReferences() {
        auto& table = engine_.table;
        for (auto& record : table.records) {
            for (auto& property : table.Properties(record)) {
                if (!is_reference(property.tag)) continue;
                auto* target = engine_.Find(property.Text());
                if (target) {
                    property.target = target->Index();
                    if (property.tag == Tag::pFeature) target->isFeature_ = true;
                } else {
                    table.faults.push_back("Node '" + std::string(record.name) + "': " + std::string(name_of(property.tag)) +
                                           " '" + std::string(property.Text()) + "' does not exist.");
                }
            }
        }
    }

    void Connect(Node& node) {
        const auto present = TagsOf(node);
        if (present.HasAny(conditionTags))
            node.conditions_ = &engine_.arena.Make<Conditions>(
                Conditions{node.Target(Tag::pIsImplemented), node.Target(Tag::pIsAvailable), node.Target(Tag::pIsLocked)});
        node.checksErrors_ = present.HasAny({Tag::pError});
        if (present.HasAny({Tag::ImposedAccessMode}))
            EAccessModeClass::FromString(node.Text(Tag::ImposedAccessMode), &node.described_);
        if (present.HasAny({Tag::PollingTime}) && parse_integer(node.Text(Tag::PollingTime)).value_or(0) > 0)
            engine_.polled.push_back(&node);
        if (present.HasAny(ruleTags)) {
            const auto kind = static_cast<INode&>(node).GetPrincipalInterfaceType();
            if (kind == intfIInteger) AddRules<int64_t>(static_cast<IntegerNode&>(node));
            if (kind == intfIFloat) AddRules<double>(static_cast<FloatNode&>(node));
        }
        elementRows[static_cast<size_t>(node.GetRecord().element)].connect(context_, node);
    }

    TagSet TagsOf(const Node& node) const {
        TagSet present;
        for (const auto& property : engine_.table.Properties(node.GetRecord())) present.Add(property.tag);
        return present;
    }

    template <class T, class Numeric>
    void AddRules(Numeric& node) {
        auto& rules = engine_.arena.Make<NumberRules<T>>();
        for (const auto& property : engine_.table.Properties(node.GetRecord())) {
            if (property.tag == Tag::ValidValueSet || property.tag == Tag::ValidValuesSet)
                rules.validValues = ValidValues<T>(property);
            auto* setting = SettingOf(rules, property.tag);
            if (!setting) continue;
            auto* target = node.Target(&property);
            if (!is_reference(property.tag))
                *setting = Setting<T>(context_.NumberOf<T>(property.Text(), property.tag));
            else if (target)  // a limit that does not exist does not limit
                *setting = Setting<T>(*target);
        }
        node.rules_ = &rules;
    }

    template <class T>
    static Setting<T>* SettingOf(NumberRules<T>& rules, Tag tag) {
        switch (tag) {
            case Tag::Min:
            case Tag::pMin:
                return &rules.min;
            case Tag::Max:
            case Tag::pMax:
                return &rules.max;
            case Tag::Inc:
            case Tag::pInc:
                return &rules.inc;
            default:
                return nullptr;
        }
    }

    template <class T>
    std::vector<T> ValidValues(const Property& property) {
        std::vector<T> values;
        for (auto text = property.Text(); !text.empty();) {
            const auto part = text.substr(0, text.find(';'));
            if (!trimmed(part).empty()) values.push_back(context_.NumberOf<T>(part, property.tag));
            text.remove_prefix(std::min(text.size(), part.size() + 1));
        }
        return values;
    }

    Engine& engine_;
    LinkContext context_;
};

}  // namespace

void link(Engine& engine) { Linker(engine).Run(); }

}  // namespace kiv::genapi
