#include "description.h"

#include "error.h"

std::string description_of(TRANSPORT_LAYER_HANDLE layer, void* module) {
    // The size does not count the terminator that a copy needs; the third argument is only required not to be null.
    uint32_t size = 0;
    check(K_GenTL_Module_GetXmlString(layer, module, module, nullptr, &size), "K_GenTL_Module_GetXmlString");
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    size = static_cast<uint32_t>(text.size());
    check(K_GenTL_Module_GetXmlString(layer, module, module, text.data(), &size), "K_GenTL_Module_GetXmlString");
    return text.c_str();
}
