#pragma once

#include "GenApi/i_base.h"
#include "GenApi/node_vector.h"

namespace GenApi {

class CNodeCallback;
class INodeMap;

/// What every node knows about itself, whatever its kind. Texts are those of the description.
class KIV_GENICAM_API INode : public IBase {
public:
    /// `fullQualified` puts "Std::" or "Cust::" in front.
    virtual gcstring GetName(bool fullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    virtual gcstring GetToolTip() const = 0;
    virtual gcstring GetDescription() const = 0;
    /// The name, when the description gives none.
    virtual gcstring GetDisplayName() const = 0;
    virtual gcstring GetDeviceName() const = 0;
    /// The hexadecimal text of the description; "" when the node belongs to no event.
    virtual gcstring GetEventID() const = 0;
    virtual gcstring GetDocuURL() const = 0;

    /// Forgets what is cached of this node and of everything that depends on it; their callbacks fire.
    virtual void InvalidateNode() = 0;
    virtual bool IsCachable() const = 0;
    virtual EYesNo IsAccessModeCacheable() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    /// Milliseconds; -1 when the node is not to be polled.
    virtual int64_t GetPollingTime() const = 0;
    virtual bool IsStreamable() const = 0;
    virtual bool IsDeprecated() const = 0;
    /// Whether some category lists the node.
    virtual bool IsFeature() const = 0;

    virtual void GetChildren(NodeList_t& children, ELinkType linkType = ctReadingChildren) const = 0;
    virtual void GetParents(NodeList_t& parents) const = 0;
    /// Those that decide whether the node is locked: its own, and those of the nodes that a write to it passes through.
    virtual void GetLockNodes(NodeList_t& locks) const = 0;
    virtual INode* GetAlias() const = 0;
    virtual INode* GetCastAlias() const = 0;

    /// The node takes the callback over and destroys it with DeregisterCallback() or at its own end.
    virtual CallbackHandleType RegisterCallback(CNodeCallback* callback) = 0;
    /// Whether the handle was that of a callback of this node. May be called from inside a callback.
    virtual bool DeregisterCallback(CallbackHandleType handle) = 0;

    virtual INodeMap* GetNodeMap() const = 0;

    virtual void GetPropertyNames(gcstring_vector& names) const = 0;
    /// What the description says under `name`; several values, and several attributes, are separated by tabs. False, and two
    /// empty texts, when the node has no such property.
    virtual bool GetProperty(const gcstring& name, gcstring& value, gcstring& attribute) const = 0;

    /// Narrow only. RW and Beginner lift what was imposed before; what the description imposes stays.
    virtual void ImposeAccessMode(EAccessMode mode) = 0;
    virtual void ImposeVisibility(EVisibility visibility) = 0;
};

}  // namespace GenApi
