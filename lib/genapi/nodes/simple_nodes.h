/// Nodes without a value of their own: folders, and nodes that only carry what all nodes have.
#pragma once

#include "nodes/showing.h"

namespace kiv::genapi {

class CategoryNode final : public Showing<GenApi::ICategory, GenApi::intfICategory> {
public:
    using Showing::Showing;
    void GetFeatures(GenApi::FeatureList_t& features) const override;

protected:
    EAccessMode SourceMode() override { return GenApi::RO; }
    std::string CurrentText() override { return {}; }
    void SetText(std::string_view, bool) override;
};

class PlainNode final : public Node {
public:
    using Node::Node;
    EAccessMode GetAccessMode() const override { return AccessModeFromOutside(); }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIBase; }
    GenApi::INode* AsNode() noexcept override { return this; }
    void* AsInterface(GenApi::EInterfaceType type) noexcept override {
        return type == GenApi::intfIBase ? static_cast<GenApi::IBase*>(static_cast<GenApi::INode*>(this)) : nullptr;
    }
};

}  // namespace kiv::genapi
