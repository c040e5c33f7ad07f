#include "features/node_type.h"

#include <string_view>

#include "features/node_cast.h"

namespace kiv {

namespace {

struct TypeText {
    K_NODE_TYPE type;
    std::string_view text;
};
constexpr TypeText type_texts[] = {
    {K_NODE_TYPE_NODE, "Node"},
    {K_NODE_TYPE_CATEGORY, "Category"},
    {K_NODE_TYPE_INTEGER, "Integer"},
    {K_NODE_TYPE_ENUMERATION, "Enumeration"},
    {K_NODE_TYPE_ENUM_ENTRY, "EnumEntry"},
    {K_NODE_TYPE_MASKED_INT_REG, "MaskedIntReg"},
    {K_NODE_TYPE_REGISTER, "Register"},
    {K_NODE_TYPE_INT_REG, "IntReg"},
    {K_NODE_TYPE_FLOAT, "Float"},
    {K_NODE_TYPE_FLOAT_REG, "FloatReg"},
    {K_NODE_TYPE_SWISS_KNIFE, "SwissKnife"},
    {K_NODE_TYPE_INT_SWISS_KNIFE, "IntSwissKnife"},
    {K_NODE_TYPE_INT_KEY, "IntKey"},
    {K_NODE_TYPE_TEXT_DESC, "TextDesc"},
    {K_NODE_TYPE_PORT, "Port"},
    {K_NODE_TYPE_CONF_ROM, "ConfRom"},
    {K_NODE_TYPE_ADV_FEATURE_LOCK, "AdvFeatureLock"},
    {K_NODE_TYPE_SMART_FEATURE, "SmartFeature"},
    {K_NODE_TYPE_STRING_REG, "StringReg"},
    {K_NODE_TYPE_BOOLEAN, "Boolean"},
    {K_NODE_TYPE_COMMAND, "Command"},
    {K_NODE_TYPE_CONVERTER, "Converter"},
    {K_NODE_TYPE_INT_CONVERTER, "IntConverter"},
};

template <class Interface>
bool offers(GenApi::INode& node) {
    return interface_of<Interface>(node) != nullptr;
}

bool selects(GenApi::INode& node) { return offers<GenApi::ISelector>(node); }

// Node maps and device information are no nodes and so never match here; their numbers (124 to 126) stay reserved.
struct TypeInterface {
    K_NODE_TYPE type;
    bool (*offered)(GenApi::INode&);
};
constexpr TypeInterface type_interfaces[] = {
    {K_NODE_TYPE_CATEGORY, offers<GenApi::ICategory>},
    {K_NODE_TYPE_INTEGER, offers<GenApi::IInteger>},
    {K_NODE_TYPE_BOOLEAN, offers<GenApi::IBoolean>},
    {K_NODE_TYPE_FLOAT, offers<GenApi::IFloat>},
    {K_NODE_TYPE_STRING_REG, offers<GenApi::IString>},
    {K_NODE_TYPE_REGISTER, offers<GenApi::IRegister>},
    {K_NODE_TYPE_ENUMERATION, offers<GenApi::IEnumeration>},
    {K_NODE_TYPE_ENUM_ENTRY, offers<GenApi::IEnumEntry>},
    {K_NODE_TYPE_PORT, offers<GenApi::IPort>},
    {K_NODE_TYPE_CHUNK_PORT, offers<GenApi::IChunkPort>},
    {K_NODE_TYPE_SELECTOR, selects},
    {K_NODE_TYPE_COMMAND, offers<GenApi::ICommand>},
    {K_NODE_TYPE_PORT_CONSTRUCT, offers<GenApi::IPortConstruct>},
};

}  // namespace

std::optional<K_NODE_TYPE> node_type(GenApi::INode& node) {
    GenICam::gcstring text, attribute;
    if (!node.GetProperty("NodeType", text, attribute)) return std::nullopt;
    for (auto& known : type_texts)
        if (known.text == std::string_view(text)) return known.type;
    for (auto& known : type_interfaces)
        if (known.offered(node)) return known.type;
    return K_NODE_TYPE_UNKNOWN;
}

}  // namespace kiv
