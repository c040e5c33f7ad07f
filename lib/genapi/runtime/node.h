/// What all nodes of a map have in common: identity, texts, access, invalidation, callbacks, properties, selectors. What a node
/// shows (an integer, a category, ...) is the business of the classes in nodes/, where its value lives that of sources/.
#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "GenApi/i_category.h"
#include "GenApi/i_node.h"
#include "GenICam/exceptions.h"
#include "runtime/engine.h"
#include "runtime/engine_log.h"
#include "runtime/operation.h"
#include "runtime/setting.h"

namespace kiv::genapi {

using GenApi::EAccessMode;
using GenApi::ECachingMode;
using GenICam::gcstring;

template <class T>
struct Range {
    T min = std::numeric_limits<T>::lowest();
    T max = std::numeric_limits<T>::max();
    T inc = std::is_integral_v<T> ? T{1} : T{0};
    bool hasInc = std::is_integral_v<T>;
};

/// The nodes that decide whether another one may be used; null where there is none.
struct Conditions {
    Node* implemented = nullptr;
    Node* available = nullptr;
    Node* locked = nullptr;
};

class Node : public GenApi::INode, public GenApi::ISelector {
public:
    Node(Engine& engine, uint32_t index) : engine_(engine), index_(index) {}
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // INode, in the order of the interface. See there.
    gcstring GetName(bool fullQualified = false) const override;
    GenApi::ENameSpace GetNameSpace() const override;
    GenApi::EVisibility GetVisibility() const override;
    gcstring GetToolTip() const override;
    gcstring GetDescription() const override;
    gcstring GetDisplayName() const override;
    gcstring GetDeviceName() const override;
    gcstring GetEventID() const override;
    gcstring GetDocuURL() const override;
    void InvalidateNode() override;
    bool IsCachable() const override;
    GenApi::EYesNo IsAccessModeCacheable() const override;
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override;
    bool IsStreamable() const override;
    bool IsDeprecated() const override;
    bool IsFeature() const override { return isFeature_; }
    void GetChildren(GenApi::NodeList_t& children, GenApi::ELinkType linkType) const override;
    void GetParents(GenApi::NodeList_t& parents) const override;
    void GetLockNodes(GenApi::NodeList_t& locks) const override;
    GenApi::INode* GetAlias() const override;
    GenApi::INode* GetCastAlias() const override;
    GenApi::CallbackHandleType RegisterCallback(GenApi::CNodeCallback* callback) override;
    bool DeregisterCallback(GenApi::CallbackHandleType handle) override;
    GenApi::INodeMap* GetNodeMap() const override { return engine_.map; }
    void GetPropertyNames(GenICam::gcstring_vector& names) const override;
    bool GetProperty(const gcstring& name, gcstring& value, gcstring& attribute) const override;
    void ImposeAccessMode(EAccessMode mode) override;
    void ImposeVisibility(GenApi::EVisibility visibility) override;

    // ISelector
    bool IsSelector() const override;
    void GetSelectedFeatures(GenApi::FeatureList_t& features) const override;
    void GetSelectingFeatures(GenApi::FeatureList_t& features) const override;

    INode* AsNode() noexcept override { return this; }

    // Between nodes: the map is locked, the caller answers for the access mode.

    Engine& Context() const { return engine_; }
    uint32_t Index() const { return index_; }
    const Record& GetRecord() const { return engine_.table.records[index_]; }
    std::string_view Name() const { return GetRecord().name; }
    GenICam::NodePlace Place() const { return {Name(), engine_.operation}; }
    const Property* Find(Tag tag) const { return engine_.table.Find(GetRecord(), tag); }
    /// The text of a property; "" when the node has none of that tag.
    std::string_view Text(Tag tag) const;
    std::string_view DisplayName() const;
    Node* Target(const Property* property) const;
    Node* Target(Tag tag) const { return Target(Find(tag)); }

    EAccessMode Mode();
    EAccessMode Imposed() const { return imposed_; }
    /// What about the node itself, not about what it refers to, prevents reading or writing: "is not connected to a device."
    virtual std::string OwnObstacle(bool forWriting) const;
    /// Throw AccessException, which says why.
    void RequireReadable();
    void RequireWritable();

    virtual int64_t ReadInteger();
    virtual double ReadFloat();
    virtual bool ReadTruth() { return ReadInteger() != 0; }
    virtual std::string ReadString();
    virtual void WriteInteger(int64_t value, bool verify);
    virtual void WriteFloat(double value, bool verify);
    virtual void WriteString(std::string_view value, bool verify);
    virtual Range<int64_t> IntegerLimits();
    virtual Range<double> FloatLimits();
    /// The values that are the only allowed ones; empty when they are not listed.
    virtual std::vector<int64_t> ListedIntegers() { return {}; }
    virtual std::vector<double> ListedFloats() { return {}; }
    virtual int64_t LongestString();
    /// The node whose unit, representation and notation count where this one has none of its own; null for none.
    virtual Node* Shown() { return nullptr; }
    /// Whether a read would not touch the device.
    bool IsFresh();
    virtual ECachingMode OwnCaching() const { return GenApi::WriteThrough; }
    /// Whether Poll() has to look after this node now.
    virtual bool IsPolledNow() { return true; }
    /// The IValue face; null for nodes without a value.
    virtual GenApi::IValue* Value() noexcept { return nullptr; }

    bool IsValueFresh() const { return engine_.states.Has(index_, kept::value) && !engine_.evaluator.bypass; }
    void MarkValueFresh() { engine_.states.Keep(index_, kept::value); }
    void ForgetValue() { engine_.states.Forget(index_, kept::value); }
    void Asked(Facets facets) { engine_.Ask(index_, facets); }
    const std::string* Fault() const;
    /// Throws RuntimeException: the node has no value, because its description is faulty or its kind is not supported.
    [[noreturn]] void RefuseValue() const;
    /// Reads the enumerations that tell whether a write went well; throws RuntimeException if it did not.
    void CheckErrors();

    // Set by the linker.
    Conditions* conditions_ = nullptr;
    bool isFeature_ = false;
    bool checksErrors_ = false;
    EAccessMode described_ = GenApi::RW;  ///< the mode that the description imposes

protected:
    /// The mode before conditions and impositions: that of whatever holds the value.
    virtual EAccessMode SourceMode() { return GenApi::RW; }

    /// Whether reading what holds the value would not touch the device.
    virtual bool IsSourceFresh() { return false; }

    /// Runs the body of a call from outside: locked, errors with this node's name, callbacks at the end.
    template <class Body>
    auto Run(const char* operation, Body&& body) -> decltype(body());
    /// The same for reading the value.
    template <class Body>
    auto RunRead(const char* operation, bool ignoreCache, Body&& body) -> decltype(body());
    /// The same for writing it.
    template <class Body>
    void RunWrite(const char* operation, Body&& body);

    EAccessMode AccessModeFromOutside() const;
    /// The value is kept and may be read: nothing more to ask.
    bool IsReadyToRead() const { return engine_.states.Has(index_, kept::value | kept::readable); }
    Node& Changeable() const { return const_cast<Node&>(*this); }

    Engine& engine_;

private:
    friend class CallbackBook;
    friend class Evaluation;
    friend struct Engine;

    enum class Truth : uint8_t { No, Yes, Unknown };
    static Truth Ask(Node& condition);
    EAccessMode WorkOutMode();
    gcstring TextOf(Tag tag) const { return Text(tag); }

    uint32_t index_;
    uint8_t evaluating_ = 0;
    bool hasCallbacks_ = false;
    bool isWaiting_ = false;
    EAccessMode mode_ = GenApi::_UndefinedAccesMode;
    EAccessMode imposed_ = GenApi::RW;
    GenApi::EVisibility imposedVisibility_ = GenApi::Beginner;
};

template <class Body>
auto Node::Run(const char* operation, Body&& body) -> decltype(body()) {
    Operation scope(engine_, operation);
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            scope.Finish();
        } else {
            auto result = body();
            scope.Finish();
            return result;
        }
    } catch (const GenICam::GenericException& error) {
        if (log_wanted(log::Level::warn)) log_failure(*this, operation, error);
        rethrow_with_node(error, {Name(), operation});
    }
}

template <class Body>
auto Node::RunRead(const char* operation, bool ignoreCache, Body&& body) -> decltype(body()) {
    return Run(operation, [&]() -> decltype(body()) {
        RequireReadable();
        const Bypass bypass(engine_.evaluator, ignoreCache);
        return body();
    });
}

template <class Body>
void Node::RunWrite(const char* operation, Body&& body) {
    Run(operation, [&] {
        if (log_wanted(log::Level::debug)) [[unlikely]]
            log_write(*this, operation);
        RequireWritable();
        body();
        if (checksErrors_) CheckErrors();
    });
}

template <class T>
void write_to(Node& node, T value, bool verify) {
    if constexpr (std::is_integral_v<T>)
        node.WriteInteger(value, verify);
    else
        node.WriteFloat(value, verify);
}

template <class T>
Range<T> limits_of(Node& node) {
    if constexpr (std::is_integral_v<T>)
        return node.IntegerLimits();
    else
        return node.FloatLimits();
}

template <class T>
std::vector<T> listed_in(Node& node) {
    if constexpr (std::is_integral_v<T>)
        return node.ListedIntegers();
    else
        return node.ListedFloats();
}

}  // namespace kiv::genapi
