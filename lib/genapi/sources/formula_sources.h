/// Values that are computed: from variables alone, or from the value of another node and back.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formula/formula.h"
#include "sources/source.h"

namespace kiv::genapi {

/// What a variable takes from its node.
enum class Part : uint8_t { Value, Min, Max, Inc, AccessMode, Visibility, CachingMode, Constant };

struct Variable {
    Node* node = nullptr;
    Part part = Part::Value;
    int64_t constant = 0;  ///< of an entry, which needs no reading
};

/// The variables of one node, and its formulas, each compiled when it is first used.
template <class T>
class FormulaSet {
public:
    explicit FormulaSet(std::vector<Variable> variables) : variables_(std::move(variables)) {}

    /// Runs the formula in property `tag`. `operand` is the name of one more variable, whose value is `value`; may be empty.
    T Run(Node& self, Tag tag, std::string_view operand, T value);
    /// Throws what is wrong with it.
    void Compile(Node& self, Tag tag, std::string_view operand);
    /// Whether all variables but `except` can be read.
    bool IsReadable(const Node* except) const;
    /// Whether reading the variables would not touch the device.
    bool IsFresh() const;

private:
    struct Program {
        Tag tag;
        Formula formula;
    };
    const Formula& Compiled(Node& self, Tag tag, std::string_view operand);
    T Read(Node& self, const Variable& variable) const;

    std::vector<Variable> variables_;
    std::vector<std::unique_ptr<Program>> programs_;
};

/// What has formulas that can be compiled ahead of their use.
class Compilable {
public:
    virtual ~Compilable() = default;
    virtual void CompileAll(Node& self) = 0;
};

template <class T>
class KnifeSource final : public Source<T>, public Compilable {
public:
    explicit KnifeSource(std::vector<Variable> variables) : formulas_(std::move(variables)) {}
    T Read(Node& self) override { return formulas_.Run(self, Tag::Formula, {}, T{}); }
    void Write(Node& self, T, bool) override {
        throw GenICam::AccessException("Node is not writable. It is computed by a formula.", self.Place());
    }
    Range<T> Limits(Node&) override { return {}; }
    EAccessMode Mode(Node&) override { return formulas_.IsReadable(nullptr) ? GenApi::RO : GenApi::NA; }
    bool IsFresh(Node&) override { return formulas_.IsFresh(); }
    void CompileAll(Node& self) override { formulas_.Compile(self, Tag::Formula, {}); }

private:
    FormulaSet<T> formulas_;
};

/// Named from the device's side: FormulaTo leads to the other node and knows the value as FROM, FormulaFrom leads back and knows
/// it as TO.
template <class T>
class ConverterSource final : public Source<T>, public Compilable {
public:
    ConverterSource(Node& target, std::vector<Variable> variables, GenApi::ESlope slope, bool isLinear)
        : target_(target), formulas_(std::move(variables)), slope_(slope), isLinear_(isLinear) {}

    T Read(Node& self) override { return From(self, read_from<T>(target_)); }
    void Write(Node& self, T value, bool verify) override;
    Range<T> Limits(Node& self) override;
    std::vector<T> Listed(Node& self) override;
    EAccessMode Mode(Node&) override { return formulas_.IsReadable(&target_) ? target_.Mode() : GenApi::NA; }
    bool IsFresh(Node&) override { return target_.IsFresh() && formulas_.IsFresh(); }
    void CompileAll(Node& self) override;

private:
    T From(Node& self, T value) { return formulas_.Run(self, Tag::FormulaFrom, "TO", value); }
    /// What `limit` of the other node is here; nothing when it is no limit or cannot be converted.
    std::optional<T> TryFrom(Node& self, T limit);

    Node& target_;
    FormulaSet<T> formulas_;
    GenApi::ESlope slope_;
    bool isLinear_;
};

}  // namespace kiv::genapi
