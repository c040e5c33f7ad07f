#include "features/node_cast.h"

namespace kiv {

bool has_text(GenApi::INode& node) noexcept {
    return interface_of<GenApi::IValue>(node) || interface_of<GenApi::IRegister>(node);
}

GenICam::gcstring text_of(GenApi::INode& node, bool verify) {
    if (auto* value = interface_of<GenApi::IValue>(node)) return value->ToString(verify, false);
    return interface_of<GenApi::IRegister>(node)->ToString(verify, false);
}

}  // namespace kiv
