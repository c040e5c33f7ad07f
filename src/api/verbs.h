/// What most functions of one family do, said once. A function that does something else is written out with guarded() and the
/// checks.
#pragma once

#include "api/checks.h"
#include "api/text_out.h"

namespace kiv::api {

/// Reads one value of a node: `get` is the GenApi operation, Interface is what the node must offer.
template <class Interface, class Result, class Get>
K_STATUS_CODES read_node(NODE_HANDLE hNode, Result* pResult, Get get) noexcept {
    return guarded([&] {
        handle(hNode);
        auto& result = out(pResult);
        auto& interface = as<Interface>(node(hNode));
        result = static_cast<Result>(get(interface));
        return K_ST_SUCCESS;
    });
}

/// Reads one text of a node.
template <class Interface, class Get>
K_STATUS_CODES read_node_text(NODE_HANDLE hNode, char* buffer, uint32_t* pSize, Get get) noexcept {
    return guarded([&] {
        handle(hNode);
        out(buffer), out(pSize);
        auto& interface = as<Interface>(node(hNode));
        return put_node_text(get(interface), buffer, *pSize);
    });
}

/// Does something to a node.
template <class Interface, class Act>
K_STATUS_CODES on_node(NODE_HANDLE hNode, Act act) noexcept {
    return guarded([&] {
        handle(hNode);
        act(as<Interface>(node(hNode)));
        return K_ST_SUCCESS;
    });
}

/// Element `index` of a list that `fill` makes anew; an index past the end is K_ST_INVALID_PARAMETER.
template <class Interface, class List, class Fill>
K_STATUS_CODES read_node_list(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phNode, Fill fill) noexcept {
    return guarded([&] {
        handle(hNode);
        auto& result = out(phNode);
        List list;
        fill(as<Interface>(node(hNode)), list);
        require(index < list.size());
        result = handle_to<NODE_HANDLE>(list[index]);
        return K_ST_SUCCESS;
    });
}

template <class Interface, class List, class Fill>
K_STATUS_CODES count_node_list(NODE_HANDLE hNode, uint32_t* pCount, Fill fill) noexcept {
    return read_node<Interface>(hNode, pCount, [&](auto& interface) {
        List list;
        fill(interface, list);
        return list.size();
    });
}

}  // namespace kiv::api
