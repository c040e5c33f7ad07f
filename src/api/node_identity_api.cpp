// K_Node_*: what a node knows about itself.
#include <kiv/node.h>

#include "api/verbs.h"
#include "features/node_type.h"

using namespace GenApi;
using namespace kiv;
using namespace kiv::api;

K_API K_STATUS_CODES K_CALL K_Node_GetName(NODE_HANDLE hNode, char* buffer, uint32_t* pSize, int32_t fullQualified) {
    return read_node_text<INode>(hNode, buffer, pSize, [&](auto& n) { return n.GetName(fullQualified != 0); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetNameSpace(NODE_HANDLE hNode, uint32_t* pNameSpace) {
    return read_node<INode>(hNode, pNameSpace, [](auto& n) { return n.GetNameSpace(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetVisibility(NODE_HANDLE hNode, uint32_t* pVisibility) {
    return read_node<INode>(hNode, pVisibility, [](auto& n) { return n.GetVisibility(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetAccessMode(NODE_HANDLE hNode, uint32_t* pMode) {
    return read_node<INode>(hNode, pMode, [](auto& n) { return n.GetAccessMode(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetIsCachable(NODE_HANDLE hNode, uint32_t* pCachable) {
    return read_node<INode>(hNode, pCachable, [](auto& n) { return n.IsCachable(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetCachingMode(NODE_HANDLE hNode, uint32_t* pMode) {
    return read_node<INode>(hNode, pMode, [](auto& n) { return n.GetCachingMode(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetPollingTime(NODE_HANDLE hNode, int64_t* pTime) {
    return read_node<INode>(hNode, pTime, [](auto& n) { return n.GetPollingTime(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetToolTip(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) { return n.GetToolTip(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetDescription(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) { return n.GetDescription(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetDisplayName(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) { return n.GetDisplayName(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetEventID(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) { return n.GetEventID(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetIsStreamable(NODE_HANDLE hNode, uint32_t* pStreamable) {
    return read_node<INode>(hNode, pStreamable, [](auto& n) { return n.IsStreamable(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetIsDeprecated(NODE_HANDLE hNode, uint32_t* pDeprecated) {
    return read_node<INode>(hNode, pDeprecated, [](auto& n) { return n.IsDeprecated(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetDocuURL(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) { return n.GetDocuURL(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias) {
    return guarded([&] {
        handle(hNode);
        auto& result = out(phAlias);
        result = handle_to<NODE_HANDLE>(node(hNode).GetAlias());
        return K_ST_SUCCESS;
    });
}

// The node itself must be of interface Own; its cast alias must be of interface Wanted. A missing alias is written as null.
template <class Own, class Wanted>
static K_STATUS_CODES typed_alias(NODE_HANDLE hNode, NODE_HANDLE* phAlias) {
    return guarded([&] {
        handle(hNode);
        auto& result = out(phAlias);
        auto& own = node(hNode);
        as<Own>(own);
        auto* alias = own.GetCastAlias();
        auto* wanted = alias ? interface_of<Wanted>(*alias) : nullptr;
        result = handle_to<NODE_HANDLE>(wanted);
        return wanted ? K_ST_SUCCESS : K_ST_INVALID_PARAMETER;
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetIntAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias) {
    return typed_alias<IFloat, IInteger>(hNode, phAlias);
}

K_API K_STATUS_CODES K_CALL K_Node_GetEnumAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias) {
    return typed_alias<IFloat, IEnumeration>(hNode, phAlias);
}

K_API K_STATUS_CODES K_CALL K_Node_GetFloatAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias) {
    return typed_alias<IInteger, IFloat>(hNode, phAlias);
}

K_API K_STATUS_CODES K_CALL K_Node_GetUnit(NODE_HANDLE hNode, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [](auto& n) {
        if (auto* integer = interface_of<IInteger>(n)) return integer->GetUnit();
        return as<IFloat>(n).GetUnit();
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetRepresentation(NODE_HANDLE hNode, uint32_t* pRepresentation) {
    return read_node<INode>(hNode, pRepresentation, [](auto& n) {
        if (auto* integer = interface_of<IInteger>(n)) return integer->GetRepresentation();
        return as<IFloat>(n).GetRepresentation();
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetDisplayNotation(NODE_HANDLE hNode, uint32_t* pNotation) {
    return read_node<IFloat>(hNode, pNotation, [](auto& number) { return number.GetDisplayNotation(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetDisplayPrecision(NODE_HANDLE hNode, int64_t* pDigits) {
    return read_node<IFloat>(hNode, pDigits, [](auto& number) { return number.GetDisplayPrecision(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetFloatHasInc(NODE_HANDLE hNode, uint32_t* pHasInc) {
    return read_node<IFloat>(hNode, pHasInc, [](auto& number) { return number.HasInc(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetFloatInc(NODE_HANDLE hNode, double* pInc) {
    return read_node<IFloat>(hNode, pInc, [](auto& number) { return number.GetInc(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetNumOfProperties(NODE_HANDLE hNode, uint32_t* pCount) {
    return count_node_list<INode, gcstring_vector>(hNode, pCount, [](auto& n, auto& names) { n.GetPropertyNames(names); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetPropertyNameByIndex(NODE_HANDLE hNode, uint32_t index, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [&](auto& n) {
        gcstring_vector names;
        n.GetPropertyNames(names);
        require(index < names.size());
        return gcstring(names[index]);
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetPropertyByName(NODE_HANDLE hNode, const char* name, char* value, uint32_t* pValueSize,
                                                     char* attribute, uint32_t* pAttributeSize) {
    return guarded([&] {
        handle(hNode);
        out(name), out(value), out(pValueSize), out(attribute), out(pAttributeSize);
        gcstring value_text, attribute_text;
        node(hNode).GetProperty(name, value_text, attribute_text);
        auto first = put_node_text(value_text, value, *pValueSize);
        auto second = put_node_text(attribute_text, attribute, *pAttributeSize);
        return first != K_ST_SUCCESS ? first : second;
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetType(NODE_HANDLE hNode, uint32_t* pType) {
    return guarded([&] {
        handle(hNode);
        auto& result = out(pType);
        auto type = node_type(node(hNode));
        if (!type) return static_cast<K_STATUS_CODES>(K_ST_GC_ERROR);
        result = *type;
        return static_cast<K_STATUS_CODES>(K_ST_SUCCESS);
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetIsSelector(NODE_HANDLE hNode, uint32_t* pIsSelector) {
    return read_node<ISelector>(hNode, pIsSelector, [](auto& selector) { return selector.IsSelector(); });
}

K_API K_STATUS_CODES K_CALL K_Node_ImposeAccessMode(NODE_HANDLE hNode, uint32_t mode) {
    return on_node<INode>(hNode, [&](auto& n) { n.ImposeAccessMode(static_cast<EAccessMode>(mode)); });
}

K_API K_STATUS_CODES K_CALL K_Node_ImposeVisibility(NODE_HANDLE hNode, uint32_t visibility) {
    return on_node<INode>(hNode, [&](auto& n) { n.ImposeVisibility(static_cast<EVisibility>(visibility)); });
}
