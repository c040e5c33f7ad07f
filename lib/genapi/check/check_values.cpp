// Numbers that contradict each other: values outside limits, fields outside registers, entries that hide each other.
#include <algorithm>
#include <map>
#include <optional>

#include "check/model.h"
#include "check/schema.h"
#include "link/number_text.h"

namespace kiv::genapi {

namespace {

struct Span {
    int64_t min = 0, max = 0;
};

class ValueCheck {
public:
    ValueCheck(const Model& model, Findings& findings) : model_(model), findings_(findings) {}

    void Run() {
        for (const auto& node : model_.nodes) {
            if (node.kind == Element::Integer) CheckNumber<int64_t>(node, parse_integer);
            if (node.kind == Element::Float) CheckNumber<double>(node, parse_double);
            if (model_.Has(node, "pPort") && node.kind != Element::StructReg) CheckRegister(node);
            if (node.kind == Element::Enumeration) CheckEnumeration(node);
            if (node.kind == Element::Boolean) CheckBoolean(node);
            if (node.kind == Element::Command) CheckFits(node, "CommandValue", Number(node, "CommandValue"));
        }
    }

private:
    std::optional<int64_t> Number(const NodeModel& node, std::string_view child) const {
        const auto* found = model_.Child(node, child);
        return found ? parse_integer(found->text) : std::nullopt;
    }

    uint32_t LineOf(const NodeModel& node, std::string_view child) const {
        const auto* found = model_.Child(node, child);
        return found ? found->line : model_.At(node).line;
    }

    void Warn(const NodeModel& node, std::string_view child, std::string text) {
        findings_.Warn(LineOf(node, child), node.name, std::move(text));
    }

    template <class T, class Parse>
    void CheckNumber(const NodeModel& node, Parse parse) {
        const auto number = [&](std::string_view child) -> std::optional<T> {
            const auto* found = model_.Child(node, child);
            return found ? parse(found->text) : std::nullopt;
        };
        const auto value = number("Value"), min = number("Min"), max = number("Max"), inc = number("Inc");
        const auto text = [&](std::string_view child) { return std::string(child) + " " + quoted(model_.TextOf(node, child)); };
        if (min && max && *min > *max) Warn(node, "Min", text("Min") + " is above " + text("Max") + ": no value is possible.");
        if (value && min && *value < *min) Warn(node, "Value", text("Value") + " is below " + text("Min") + ".");
        if (value && max && *value > *max) Warn(node, "Value", text("Value") + " is above " + text("Max") + ".");
        if (inc && *inc <= 0) Warn(node, "Inc", text("Inc") + " is no step.");
        if constexpr (std::is_integral_v<T>) {
            const auto steps = value && min ? static_cast<uint64_t>(*value) - static_cast<uint64_t>(*min) : 0;
            if (inc && *inc > 0 && value && min && *value >= *min && steps % static_cast<uint64_t>(*inc) != 0)
                Warn(node, "Value", text("Value") + " is no whole number of steps of " + text("Inc") + " from Min.");
            CheckFits(node, "Min", min);
            CheckFits(node, "Max", max);
        }
    }

    /// What the register holds that a node takes its value from; nothing when that is not known.
    std::optional<Span> SpanOf(const NodeModel& node) const {
        const auto target = model_.Find(model_.TextOf(node, "pValue"));
        if (target == none) return std::nullopt;
        const auto& found = model_.nodes[target];
        if (found.kind != Element::IntReg && found.kind != Element::MaskedIntReg && found.kind != Element::StructEntry)
            return std::nullopt;
        auto bits = Number(found, "Length").value_or(0) * 8;
        if (found.kind != Element::IntReg) {
            const auto lsb = Number(found, "LSB"), msb = Number(found, "MSB");
            bits = model_.Has(found, "Bit") ? 1 : lsb && msb ? std::max(*lsb, *msb) - std::min(*lsb, *msb) + 1 : 0;
        }
        if (bits < 1 || bits > 63) return std::nullopt;
        const auto all = int64_t{1} << bits;
        if (model_.TextOf(found, "Sign") == "Signed") return Span{-all / 2, all / 2 - 1};
        return Span{0, all - 1};
    }

    void CheckFits(const NodeModel& node, std::string_view what, std::optional<int64_t> value) {
        const auto span = value ? SpanOf(node) : std::nullopt;
        if (!span || (*value >= span->min && *value <= span->max)) return;
        Warn(node, what,
             std::string(what) + " " + std::to_string(*value) + " does not fit the register " +
                 quoted(model_.TextOf(node, "pValue")) + ", which holds " + std::to_string(span->min) + " to " +
                 std::to_string(span->max) + ".");
    }

    void CheckRegister(const NodeModel& node) {
        const bool isInteger =
            node.kind == Element::IntReg || node.kind == Element::MaskedIntReg || node.kind == Element::StructEntry;
        if (const auto length = Number(node, "Length")) {
            const auto said = "The length of " + std::to_string(*length) + " bytes ";
            const auto line = LineOf(node, "Length");
            if (*length == 0)
                findings_.Error(line, node.name, said + "leaves nothing to read.");
            else if (isInteger && *length > 8)
                findings_.Error(line, node.name, said + "is too much for an integer.");
            else if (isInteger && (*length & (*length - 1)) != 0)
                findings_.Note(line, node.name, said + "is unusual for an integer.");
            if (node.kind == Element::FloatReg && *length != 4 && *length != 8)
                findings_.Error(line, node.name, said + "is none of a floating point number (4 or 8).");
            if (isInteger && *length > 0 && *length <= 8 && node.kind != Element::IntReg) CheckBits(node, *length);
        }
        const auto port = model_.Find(model_.TextOf(node, "pPort"));
        const bool isChunk =
            port != none && (model_.Has(model_.nodes[port], "ChunkID") || model_.Has(model_.nodes[port], "pChunkID"));
        const auto address = Number(node, "Address");
        if (address && *address < 0 && !isChunk && !model_.TextOf(node, "Address").starts_with("0x") && !HasComputedAddress(node))
            Warn(node, "Address", "The address " + std::to_string(*address) + " is negative, which only chunks have.");
    }

    bool HasComputedAddress(const NodeModel& node) const {
        return model_.Has(node, "pAddress") || model_.Has(node, "pIndex") || model_.Has(node, "IntSwissKnife");
    }

    void CheckBits(const NodeModel& node, int64_t length) {
        const bool isBig = model_.TextOf(node, "Endianess") == "BigEndian";
        const auto lsb = Number(node, "LSB"), msb = Number(node, "MSB");
        for (const std::string_view child : {"Bit", "LSB", "MSB"})
            if (const auto bit = Number(node, child); bit && *bit >= length * 8)
                findings_.Error(LineOf(node, child), node.name,
                                "A register of " + std::to_string(length) + " bytes has no bit " + std::to_string(*bit) + ".");
        if (lsb && msb && (isBig ? *msb > *lsb : *lsb > *msb))
            Warn(node, "LSB",
                 std::string("LSB and MSB stand the wrong way round for a ") + (isBig ? "big" : "little") + " endian register.");
    }

    void CheckEnumeration(const NodeModel& node) {
        std::map<std::string_view, uint32_t> names;
        std::map<int64_t, std::string_view> values;
        for (const auto index : node.inner) {
            const auto& entry = model_.nodes[index];
            const auto line = model_.At(entry).line;
            if (!names.emplace(entry.name, line).second)
                findings_.Warn(line, node.name, "There are two entries " + quoted(entry.name) + "; the first one is found.");
            const auto value = Number(entry, "Value");
            if (!value) continue;
            if (const auto [first, isNew] = values.emplace(*value, entry.name); !isNew)
                findings_.Warn(line, node.name,
                               "Entry " + quoted(entry.name) + " has the value of entry " + quoted(first->second) +
                                   "; of the two the first that is available is shown.");
            const auto span = SpanOf(node);
            if (span && (*value < span->min || *value > span->max))
                findings_.Warn(LineOf(entry, "Value"), node.name,
                               "Entry " + quoted(entry.name) + ": " + std::to_string(*value) + " does not fit the register " +
                                   quoted(model_.TextOf(node, "pValue")) + ".");
        }
        const auto value = Number(node, "Value");
        if (value && !values.contains(*value) && !model_.Has(node, "pEnumEntry"))
            Warn(node, "Value", "Value " + std::to_string(*value) + " belongs to no entry.");
    }

    void CheckBoolean(const NodeModel& node) {
        const auto on = Number(node, "OnValue").value_or(1), off = Number(node, "OffValue").value_or(0);
        if (on == off) Warn(node, "OnValue", "OnValue and OffValue are the same.");
        CheckFits(node, "OnValue", on);
        CheckFits(node, "OffValue", off);
    }

    const Model& model_;
    Findings& findings_;
};

}  // namespace

void check_values(const Model& model, Findings& findings) { ValueCheck(model, findings).Run(); }

}  // namespace kiv::genapi
