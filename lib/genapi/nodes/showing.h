/// What every class of nodes repeats for the interface that it shows: which one it is, and the value as text.
#pragma once

#include "GenApi/i_value.h"
#include "runtime/node.h"

namespace kiv::genapi {

template <class Interface, GenApi::EInterfaceType kind>
class Showing : public Node, public Interface {
public:
    using Node::Node;

    // Each interface is an IBase of its own, so these are overridden here for all of them.
    EAccessMode GetAccessMode() const override { return AccessModeFromOutside(); }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return kind; }
    GenApi::INode* AsNode() noexcept override { return this; }
    void* AsInterface(GenApi::EInterfaceType type) noexcept override {
        if (type == kind) return static_cast<Interface*>(this);
        if (type == GenApi::intfIValue) return static_cast<GenApi::IValue*>(this);
        if (type == GenApi::intfIBase) return static_cast<GenApi::IBase*>(static_cast<GenApi::INode*>(this));
        return nullptr;
    }
    GenApi::IValue* Value() noexcept override { return this; }

    GenApi::INode* GetNode() override { return this; }
    gcstring ToString(bool verify = false, bool ignoreCache = false) override {
        return RunRead("ToString", ignoreCache, [&] {
            if (verify) VerifyValue();
            return CurrentText();
        });
    }
    void FromString(const gcstring& text, bool verify = true) override {
        RunWrite("FromString", [&] { SetText(text, verify); });
    }
    bool IsValueCacheValid() const override {
        const GenApi::AutoLock hold(engine_.lock);
        try {
            return Changeable().IsFresh();
        } catch (const std::exception&) {
            return false;
        }
    }

protected:
    virtual std::string CurrentText() = 0;
    virtual void SetText(std::string_view text, bool verify) = 0;
    /// Throws OutOfRangeException when the current value is outside its limits.
    virtual void VerifyValue() {}

    [[noreturn]] void RefuseText(std::string_view text) {
        throw GenICam::InvalidArgumentException(
            "Feature '" + std::string(Name()) + "' : cannot convert value '" + std::string(text) + "', the value is invalid.",
            Place());
    }
};

}  // namespace kiv::genapi
