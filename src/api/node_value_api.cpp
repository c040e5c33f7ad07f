// K_Node_*: values, limits, commands, entries, selector links, registers, callbacks.
#include <GenApi/node_callback.h>
#include <kiv/node.h>

#include "api/verbs.h"
#include "features/node_value.h"

using namespace GenApi;
using namespace kiv;
using namespace kiv::api;

K_API K_STATUS_CODES K_CALL K_Node_GetValueInt64(NODE_HANDLE hNode, bool8_kiv verify, int64_t* pValue) {
    return guarded([&] {
        handle(hNode);
        auto& result = out(pValue);
        int64_t value = 0;
        require(get_int64(node(hNode), verify, value));
        result = value;
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Node_SetValueInt64(NODE_HANDLE hNode, bool8_kiv verify, int64_t value) {
    return on_node<INode>(hNode, [&](auto& n) { require(set_int64(n, verify, value)); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetValueDouble(NODE_HANDLE hNode, bool8_kiv verify, double* pValue) {
    return read_node<IFloat>(hNode, pValue, [&](auto& number) { return number.GetValue(verify, false); });
}

K_API K_STATUS_CODES K_CALL K_Node_SetValueDouble(NODE_HANDLE hNode, bool8_kiv verify, double value) {
    return on_node<IFloat>(hNode, [&](auto& number) { number.SetValue(value, verify); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetValueString(NODE_HANDLE hNode, bool8_kiv verify, char* buffer, uint32_t* pSize) {
    return read_node_text<INode>(hNode, buffer, pSize, [&](auto& n) {
        if (auto* text = interface_of<IString>(n)) return text->GetValue(verify, false);
        require(has_text(n));
        return text_of(n, verify);
    });
}

K_API K_STATUS_CODES K_CALL K_Node_SetValueString(NODE_HANDLE hNode, bool8_kiv verify, const char* text) {
    return guarded([&] {
        handle(hNode);
        out(text);
        require(set_text(node(hNode), verify, text));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Node_GetMinInt64(NODE_HANDLE hNode, int64_t* pMin) {
    return read_node<IInteger>(hNode, pMin, [](auto& integer) { return integer.GetMin(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetMaxInt64(NODE_HANDLE hNode, int64_t* pMax) {
    return read_node<IInteger>(hNode, pMax, [](auto& integer) { return integer.GetMax(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetInc(NODE_HANDLE hNode, int64_t* pInc) {
    return read_node<IInteger>(hNode, pInc, [](auto& integer) { return integer.GetInc(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetMinDouble(NODE_HANDLE hNode, double* pMin) {
    return read_node<IFloat>(hNode, pMin, [](auto& number) { return number.GetMin(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetMaxDouble(NODE_HANDLE hNode, double* pMax) {
    return read_node<IFloat>(hNode, pMax, [](auto& number) { return number.GetMax(); });
}

K_API K_STATUS_CODES K_CALL K_Node_ExecuteCommand(NODE_HANDLE hNode) {
    return on_node<ICommand>(hNode, [](auto& command) { command.Execute(true); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetCommandIsDone(NODE_HANDLE hNode, uint32_t* pIsDone) {
    return read_node<ICommand>(hNode, pIsDone, [](auto& command) { return command.IsDone(true); });
}

K_API K_STATUS_CODES K_CALL K_Node_Invalidate(NODE_HANDLE hNode) {
    return on_node<INode>(hNode, [](auto& n) { n.InvalidateNode(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetNumOfEnumEntries(NODE_HANDLE hNode, uint32_t* pCount) {
    return count_node_list<IEnumeration, NodeList_t>(hNode, pCount,
                                                     [](auto& enumeration, auto& list) { enumeration.GetEntries(list); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetEnumEntryByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phEntry) {
    return read_node_list<IEnumeration, NodeList_t>(hNode, index, phEntry,
                                                    [](auto& enumeration, auto& list) { enumeration.GetEntries(list); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetEnumEntryValue(NODE_HANDLE hNode, int64_t* pValue) {
    return read_node<IEnumEntry>(hNode, pValue, [](auto& entry) { return entry.GetValue(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetNumOfSelectedFeatures(NODE_HANDLE hNode, uint32_t* pCount) {
    return count_node_list<ISelector, FeatureList_t>(hNode, pCount,
                                                     [](auto& selector, auto& list) { selector.GetSelectedFeatures(list); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetSelectedFeatureByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phFeature) {
    return read_node_list<ISelector, FeatureList_t>(hNode, index, phFeature,
                                                    [](auto& selector, auto& list) { selector.GetSelectedFeatures(list); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetNumOfSelectingFeatures(NODE_HANDLE hNode, uint32_t* pCount) {
    return count_node_list<ISelector, FeatureList_t>(hNode, pCount,
                                                     [](auto& selector, auto& list) { selector.GetSelectingFeatures(list); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetSelectingFeatureByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phFeature) {
    return read_node_list<ISelector, FeatureList_t>(hNode, index, phFeature,
                                                    [](auto& selector, auto& list) { selector.GetSelectingFeatures(list); });
}

// Buffer and length go to the node map as they are: its own checks answer with a GenICam error.
K_API K_STATUS_CODES K_CALL K_Node_GetValueRegister(NODE_HANDLE hNode, uint8_t* buffer, int64_t length) {
    return on_node<IRegister>(hNode, [&](auto& bytes) { bytes.Get(buffer, length, false, false); });
}

K_API K_STATUS_CODES K_CALL K_Node_SetValueRegister(NODE_HANDLE hNode, const uint8_t* buffer, int64_t length) {
    return on_node<IRegister>(hNode, [&](auto& bytes) { bytes.Set(buffer, length, true); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetRegisterLength(NODE_HANDLE hNode, int64_t* pLength) {
    return read_node<IRegister>(hNode, pLength, [](auto& bytes) { return bytes.GetLength(); });
}

K_API K_STATUS_CODES K_CALL K_Node_GetRegisterAddress(NODE_HANDLE hNode, int64_t* pAddress) {
    return read_node<IRegister>(hNode, pAddress, [](auto& bytes) { return bytes.GetAddress(); });
}

K_API K_STATUS_CODES K_CALL K_Node_RegisterCallback(NODE_HANDLE hNode, K_NODE_CALLBACK callback) {
    return guarded([&] {
        handle(hNode);
        require(callback != nullptr);
        Register(
            &node(hNode), [callback](INode* changed) { callback(changed); }, cbPostInsideLock);
        return K_ST_SUCCESS;
    });
}
