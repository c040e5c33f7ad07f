/// From a bare node handle to the interface that an operation needs.
///
/// A handle may be a pointer to any GenApi interface of a node; each has IBase as its first base, so that it can be read as one
/// where it stands. The node itself then answers for its interfaces: no dynamic_cast on the way of a value.
#pragma once

#include <GenApi/i_category.h>
#include <GenApi/i_enumeration.h>
#include <GenApi/i_node.h>
#include <GenApi/i_numeric.h>
#include <GenApi/i_port.h>
#include <GenApi/i_register.h>

namespace kiv {

template <class Interface>
inline constexpr int interface_number = -1;
template <>
inline constexpr int interface_number<GenApi::IValue> = GenApi::intfIValue;
template <>
inline constexpr int interface_number<GenApi::IInteger> = GenApi::intfIInteger;
template <>
inline constexpr int interface_number<GenApi::IBoolean> = GenApi::intfIBoolean;
template <>
inline constexpr int interface_number<GenApi::ICommand> = GenApi::intfICommand;
template <>
inline constexpr int interface_number<GenApi::IFloat> = GenApi::intfIFloat;
template <>
inline constexpr int interface_number<GenApi::IString> = GenApi::intfIString;
template <>
inline constexpr int interface_number<GenApi::IRegister> = GenApi::intfIRegister;
template <>
inline constexpr int interface_number<GenApi::ICategory> = GenApi::intfICategory;
template <>
inline constexpr int interface_number<GenApi::IEnumeration> = GenApi::intfIEnumeration;
template <>
inline constexpr int interface_number<GenApi::IEnumEntry> = GenApi::intfIEnumEntry;

/// The node behind a handle; null when it is none.
inline GenApi::INode* node_of(void* handle) noexcept { return handle ? static_cast<GenApi::IBase*>(handle)->AsNode() : nullptr; }

/// The interface of a node; null when it has none of that kind.
template <class Interface>
Interface* interface_of(GenApi::INode& node) noexcept {
    if constexpr (interface_number<Interface> >= 0)
        return static_cast<Interface*>(node.AsInterface(static_cast<GenApi::EInterfaceType>(interface_number<Interface>)));
    else
        return dynamic_cast<Interface*>(&node);
}
template <>
inline GenApi::INode* interface_of<GenApi::INode>(GenApi::INode& node) noexcept {
    return &node;
}

/// A node's text value, whether it is a value or a bare register; null texts do not occur.
GenICam::gcstring text_of(GenApi::INode& node, bool verify);
/// False when the node has no text form.
bool has_text(GenApi::INode& node) noexcept;

}  // namespace kiv
