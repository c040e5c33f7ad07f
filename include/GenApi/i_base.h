#pragma once

#include "GenApi/types.h"

namespace GenApi {

class INode;

/// The root of all interfaces. It is the first base, never a virtual one, of every interface, so that a pointer to any interface
/// of a node can be taken as a pointer to an IBase where it stands. A node therefore holds several of them, all giving the same
/// answers.
class KIV_GENICAM_API IBase {
public:
    virtual EAccessMode GetAccessMode() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;

    /// The node that this interface belongs to; null for what is no node of a map (an application's own port).
    virtual INode* AsNode() noexcept { return nullptr; }
    /// The interface of the asked kind, as a pointer to exactly that interface; null when the object does not offer it.
    /// Says the same as dynamic_cast, in a fraction of the time.
    virtual void* AsInterface(EInterfaceType) noexcept { return nullptr; }

    virtual ~IBase();

protected:
    IBase() = default;
    IBase(const IBase&) = default;
    IBase& operator=(const IBase&) = default;
};

inline bool IsReadable(const IBase* object) { return object && IsReadable(object->GetAccessMode()); }
inline bool IsWritable(const IBase* object) { return object && IsWritable(object->GetAccessMode()); }
inline bool IsImplemented(const IBase* object) { return object && IsImplemented(object->GetAccessMode()); }
inline bool IsAvailable(const IBase* object) { return object && IsAvailable(object->GetAccessMode()); }
template <class Object>
requires requires(const Object& object) { object.GetAccessMode(); }
bool IsReadable(const Object& object) { return IsReadable(object.GetAccessMode()); }
template <class Object>
requires requires(const Object& object) { object.GetAccessMode(); }
bool IsWritable(const Object& object) { return IsWritable(object.GetAccessMode()); }
template <class Object>
requires requires(const Object& object) { object.GetAccessMode(); }
bool IsImplemented(const Object& object) { return IsImplemented(object.GetAccessMode()); }
template <class Object>
requires requires(const Object& object) { object.GetAccessMode(); }
bool IsAvailable(const Object& object) { return IsAvailable(object.GetAccessMode()); }

}  // namespace GenApi
