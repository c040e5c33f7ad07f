#pragma once

#include "GenApi/i_category.h"
#include "GenApi/i_enumeration.h"
#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenApi/i_numeric.h"
#include "GenApi/i_port.h"
#include "GenApi/i_register.h"
#include "GenICam/exceptions.h"

namespace GenApi {

/// A borrowed interface pointer, made from a pointer to any other interface of the same object. Null when the object lacks the
/// interface; using a null one throws LogicalErrorException.
template <class Interface>
class CPointer {
public:
    CPointer() = default;
    CPointer(std::nullptr_t) {}
    CPointer(Interface* pointer) : pointer_(pointer) {}
    template <class Other>
    CPointer(Other* other) : pointer_(dynamic_cast<Interface*>(other)) {}
    template <class Other>
    CPointer(const CPointer<Other>& other) : CPointer(other.Get()) {}

    Interface* operator->() const { return &Checked(); }
    Interface& operator*() const { return Checked(); }
    operator Interface*() const { return pointer_; }
    Interface* Get() const { return pointer_; }
    bool IsValid() const { return pointer_ != nullptr; }

private:
    Interface& Checked() const {
        if (!pointer_) throw GenICam::LogicalErrorException("NULL pointer dereferenced");
        return *pointer_;
    }
    Interface* pointer_ = nullptr;
};

using CBasePtr = CPointer<IBase>;
using CNodePtr = CPointer<INode>;
using CValuePtr = CPointer<IValue>;
using CIntegerPtr = CPointer<IInteger>;
using CFloatPtr = CPointer<IFloat>;
using CBooleanPtr = CPointer<IBoolean>;
using CStringPtr = CPointer<IString>;
using CEnumerationPtr = CPointer<IEnumeration>;
using CEnumEntryPtr = CPointer<IEnumEntry>;
using CCommandPtr = CPointer<ICommand>;
using CRegisterPtr = CPointer<IRegister>;
using CCategoryPtr = CPointer<ICategory>;
using CSelectorPtr = CPointer<ISelector>;
using CPortPtr = CPointer<IPort>;
using CPortConstructPtr = CPointer<IPortConstruct>;
using CChunkPortPtr = CPointer<IChunkPort>;
using CNodeMapPtr = CPointer<INodeMap>;
using CDeviceInfoPtr = CPointer<IDeviceInfo>;

}  // namespace GenApi
