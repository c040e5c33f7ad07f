/// Nodes that show an integer or a floating point number. What the two have in common: a source, limits of their own or of the
/// source, and the checks before a write.
#pragma once

#include <optional>
#include <vector>

#include "GenApi/i_numeric.h"
#include "nodes/showing.h"
#include "sources/source.h"

namespace kiv::genapi {

/// What a description says about the limits of a number, and what an application has narrowed.
template <class T>
struct NumberRules {
    Setting<T> min, max, inc;
    std::vector<T> validValues;
    std::optional<T> imposedMin, imposedMax;
};

template <class T, class Interface, GenApi::EInterfaceType kind>
class NumberNode : public Showing<Interface, kind> {
public:
    using Showing<Interface, kind>::Showing;

    void SetValue(T value, bool verify = true) final {
        this->RunWrite("SetValue", [&] { WriteNumber(value, verify); });
    }
    T GetValue(bool verify = false, bool ignoreCache = false) final {
        if (!verify && !ignoreCache) {
            const GenApi::AutoLock hold(this->engine_.lock);
            if (this->IsReadyToRead()) return kept_.Last();
        }
        return this->RunRead("GetValue", ignoreCache, [&] {
            if (verify) this->VerifyValue();
            return ReadNumber();
        });
    }
    T GetMin() final {
        return this->Run("GetMin", [&] { return Limits().min; });
    }
    T GetMax() final {
        return this->Run("GetMax", [&] { return Limits().max; });
    }
    GenApi::EIncMode GetIncMode() final;
    T GetInc() final;
    std::vector<T> GetListOfValidValues(bool bounded = true) final;
    GenApi::ERepresentation GetRepresentation() final;
    gcstring GetUnit() final;
    void ImposeMin(T value) final;
    void ImposeMax(T value) final;

    Node* Shown() override { return source_->Shown(*this); }

    T ReadNumber() { return kept_.Read(*this, *source_); }
    void WriteNumber(T value, bool verify);
    Range<T> Limits();
    /// Its own list, else that of where the value lives.
    std::vector<T> Listed();

    // Set by the linker. There is always a source, if only one that refuses.
    Source<T>* source_ = nullptr;
    NumberRules<T>* rules_ = nullptr;

protected:
    bool IsSourceFresh() override { return source_->IsFresh(*this); }
    EAccessMode SourceMode() override { return source_->Mode(*this); }
    void VerifyValue() override { RequireInRange(ReadNumber()); }
    void RequireInRange(T value);
    /// A sentence about where the limit comes from that is called `name`; "" when the node's own description says it.
    std::string OriginOf(const char* name, const Setting<T> NumberRules<T>::*setting, const std::optional<T>& imposed, T limit);
    /// The property of this node or, when it has none, of the one that it shows; "" when neither has.
    std::string_view ForwardedText(Tag tag);

private:
    NumberRules<T>& ChangeableRules();

    Kept<T> kept_;
};

class IntegerNode : public NumberNode<int64_t, GenApi::IInteger, GenApi::intfIInteger> {
public:
    using NumberNode::NumberNode;
    GenApi::IFloat* GetFloatAlias() override;

    int64_t ReadInteger() override { return ReadNumber(); }
    double ReadFloat() override { return static_cast<double>(ReadNumber()); }
    void WriteInteger(int64_t value, bool verify) override { WriteNumber(value, verify); }
    void WriteFloat(double value, bool verify) override;
    Range<int64_t> IntegerLimits() override { return Limits(); }
    Range<double> FloatLimits() override;
    std::vector<int64_t> ListedIntegers() override { return Listed(); }
    std::vector<double> ListedFloats() override;

protected:
    std::string CurrentText() override;
    void SetText(std::string_view text, bool verify) override;
};

class FloatNode : public NumberNode<double, GenApi::IFloat, GenApi::intfIFloat> {
public:
    using NumberNode::NumberNode;
    bool HasInc() override;
    GenApi::EDisplayNotation GetDisplayNotation() override;
    int64_t GetDisplayPrecision() override;
    GenApi::IInteger* GetIntAlias() override;
    GenApi::IEnumeration* GetEnumAlias() override;

    int64_t ReadInteger() override;
    double ReadFloat() override { return ReadNumber(); }
    bool ReadTruth() override { return ReadNumber() != 0.0; }
    void WriteInteger(int64_t value, bool verify) override { WriteNumber(static_cast<double>(value), verify); }
    void WriteFloat(double value, bool verify) override { WriteNumber(value, verify); }
    Range<int64_t> IntegerLimits() override;
    Range<double> FloatLimits() override { return Limits(); }
    std::vector<double> ListedFloats() override { return Listed(); }

protected:
    std::string CurrentText() override;
    void SetText(std::string_view text, bool verify) override;
};

/// The whole number nearest to `value`, halves away from zero; throws OutOfRangeException when there is none.
int64_t rounded(double value, Node& node);

}  // namespace kiv::genapi
