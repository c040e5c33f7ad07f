#pragma once

#include <memory>
#include <utility>

#include "GenApi/i_node.h"

namespace GenApi {

/// What is called when a node's value may have changed. The node owns it; see INode::RegisterCallback().
///
/// It runs on the thread that caused the change. Inside the lock it must not wait for another thread that uses the map.
class KIV_GENICAM_API CNodeCallback {
public:
    CNodeCallback(INode* node, ECallbackType type) : node_(node), type_(type) {}
    virtual ~CNodeCallback();
    CNodeCallback(const CNodeCallback&) = delete;
    CNodeCallback& operator=(const CNodeCallback&) = delete;

    /// Called for every type; does something for its own.
    virtual void operator()(ECallbackType type) const = 0;
    INode* GetNode() const { return node_; }
    ECallbackType GetType() const { return type_; }

private:
    INode* node_;
    ECallbackType type_;
};

/// Wraps anything that can be called with an INode*.
template <class Function>
class Function_NodeCallback : public CNodeCallback {
public:
    Function_NodeCallback(INode* node, Function function, ECallbackType type)
        : CNodeCallback(node, type), function_(std::move(function)) {}
    void operator()(ECallbackType type) const override {
        if (type == GetType()) function_(GetNode());
    }

private:
    mutable Function function_;
};

template <class Function>
CNodeCallback* make_NodeCallback(INode* node, Function function, ECallbackType type) {
    return std::make_unique<Function_NodeCallback<Function>>(node, std::move(function), type).release();
}

template <class Function>
CallbackHandleType Register(INode* node, Function function, ECallbackType type = cbPostInsideLock) {
    return node->RegisterCallback(make_NodeCallback(node, std::move(function), type));
}

template <class Client, class Member>
CallbackHandleType Register(INode* node, Client& client, Member member, ECallbackType type = cbPostInsideLock) {
    return Register(
        node, [&client, member](INode* changed) { (client.*member)(changed); }, type);
}

/// Takes the callback from its node and destroys it. A handle that is null, or no longer good, is let pass.
KIV_GENICAM_API void Deregister(CallbackHandleType handle);

}  // namespace GenApi
