/// Each check yields the thing that it checked, so that the unchecked form is never used again. A function states its checks in
/// the order in which the caller must see them fail, each as a statement of its own.
#pragma once

#include "api/guard.h"
#include "api/handles.h"
#include "features/node_cast.h"

namespace kiv::api {

/// A producer entry point that may be absent.
template <class Function>
ProducerEntry<Function> entry(const ProducerEntry<Function>& function) {
    if (!function) fail(K_ST_NOT_IMPLEMENTED);
    return function;
}

/// A result pointer.
template <class Result>
Result& out(Result* result) {
    if (!result) fail(K_ST_INVALID_PARAMETER);
    return *result;
}
inline void out(const void* result) {
    if (!result) fail(K_ST_INVALID_PARAMETER);
}

inline void require(bool condition) {
    if (!condition) fail(K_ST_INVALID_PARAMETER);
}

/// A handle that is not looked into.
inline void handle(const void* opaque) {
    if (!opaque) fail(K_ST_INVALID_HANDLE);
}

/// The node behind a handle that is not null.
inline GenApi::INode& node(NODE_HANDLE hNode) { return out(node_of(hNode)); }

/// The interface that an operation needs of a node.
template <class Interface>
Interface& as(GenApi::INode& node) {
    return out(interface_of<Interface>(node));
}

/// The node map of a camera.
inline GenApi::INodeMap& node_map(GenICam::Factory::CCameraClass& camera) {
    auto* map = camera.GetNodeMap();
    if (!map) fail(K_ST_NO_DATA);
    return *map;
}

}  // namespace kiv::api
