#include "runtime/access_reason.h"

#include "runtime/node.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

constexpr TagSet readTags{Tag::pIndex, Tag::pVariable, Tag::pAddress, Tag::IntSwissKnife, Tag::pLength, Tag::pCommandValue};
constexpr TagSet valueTags{Tag::pValue, Tag::pValueCopy, Tag::pPort};
constexpr int deepest = 16;

std::string quoted(const Node& node) { return "'" + std::string(node.Name()) + "'"; }

bool allows(Node& node, bool writing) {
    const auto mode = Combine(node.Mode(), RW);
    return writing ? IsWritable(mode) : IsReadable(mode);
}

class Inquiry {
public:
    explicit Inquiry(Node& start) : start_(start) {}

    std::string Ask(Node& node, bool writing, int depth = 0) {
        if (depth >= deepest) return {};
        if (const auto* fault = node.Fault())
            return (&node == &start_ ? "Its description" : "The description of " + quoted(node)) + " is faulty: " + *fault;
        if (auto text = OfConditions(node); !text.empty()) return text;
        for (const auto mode : {node.Imposed(), node.described_})
            if (!(writing ? IsWritable(mode) : IsReadable(mode)))
                return "The access mode " + std::string(EAccessModeClass::ToString(mode)) + " is imposed on " +
                       Subject(node, "it") + (mode == node.described_ ? " by the description." : ".");
        if (auto text = node.OwnObstacle(writing); !text.empty()) return Subject(node, "It") + " " + text;
        if (auto text = OfOthers(node, writing, depth); !text.empty()) return text;
        if (auto* lock = node.conditions_ ? node.conditions_->locked : nullptr; writing && lock && IsTrue(*lock))
            return Subject(node, "It") + " is locked: " + quoted(*lock) + " is " + Number(*lock) + ".";
        return {};
    }

private:
    std::string Subject(const Node& node, const char* start) const { return &node == &start_ ? start : quoted(node); }
    static std::string Number(Node& node) { return std::to_string(node.ReadInteger()); }
    static bool IsTrue(Node& node) { return allows(node, false) && node.ReadTruth(); }

    std::string OfConditions(Node& node) const {
        if (!node.conditions_) return {};
        const auto judge = [&](Node* condition, const char* what) -> std::string {
            if (!condition) return {};
            const auto start = Subject(node, "It") + " is not " + what + ": " + quoted(*condition);
            if (!allows(*condition, false)) return start + " cannot be read.";
            return condition->ReadTruth() ? "" : start + " is 0.";
        };
        auto text = judge(node.conditions_->implemented, "implemented");
        return text.empty() ? judge(node.conditions_->available, "available") : text;
    }

    /// What the value comes from must allow the same; what decides where that is must be readable.
    std::string OfOthers(Node& node, bool writing, int depth) {
        for (const auto& property : node.Context().table.Properties(node.GetRecord())) {
            auto* other = node.Target(&property);
            if (!other || other == &node) continue;
            if (readTags.Has(property.tag) && !allows(*other, false)) return Ask(*other, false, depth + 1);
            if (valueTags.Has(property.tag) && !allows(*other, writing)) return Ask(*other, writing, depth + 1);
        }
        auto* shown = node.Shown();  // of a table: the entry that is chosen now
        return shown && shown != &node && !allows(*shown, writing) ? Ask(*shown, writing, depth + 1) : std::string();
    }

    Node& start_;
};

}  // namespace

std::string access_reason(Node& node, bool forWriting) noexcept {
    try {
        return Inquiry(node).Ask(node, forWriting);
    } catch (...) {  // whatever prevents the answer, the refusal itself stands
        return {};
    }
}

}  // namespace kiv::genapi
