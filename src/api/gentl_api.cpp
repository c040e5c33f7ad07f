// K_GenTL_*: the module tree and its descriptions.
#include <kiv/gentl.h>

#include <algorithm>
#include <cstring>

#include "api/checks.h"
#include "api/text_out.h"
#include "camera/description.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CCameraClass;

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumberOfTransportLayers(FACTORY_HANDLE hFactory, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& count = out(pCount);
        count = static_cast<uint32_t>(opened.Producers().size());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetTransportLayerByIndex(FACTORY_HANDLE hFactory, uint32_t index,
                                                             TRANSPORT_LAYER_HANDLE* phTransportLayer, char* name,
                                                             uint32_t size) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& result = out(phTransportLayer);
        auto producers = opened.Producers();
        require(index < producers.size());
        auto& [key, producer] = producers[index];
        if (name && size > 0) name[key.copy(name, size - 1)] = '\0';
        result = handle_to<TRANSPORT_LAYER_HANDLE>(producer);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLGetInfo(TRANSPORT_LAYER_HANDLE hTransportLayer, int32_t infoCmd, int32_t* pType,
                                              void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto get = entry(producer.TLGetInfo);
        auto& size = out(pSize);
        GenTL::INFO_DATATYPE type = 0;
        std::size_t wide = size;
        auto status = get(producer.TL(), infoCmd, &type, buffer, &wide);
        if (status == K_ST_SUCCESS) size = static_cast<uint32_t>(wide);
        if (status == K_ST_SUCCESS && pType) *pType = type;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_Is_GigE_Transport_Layer(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pIsGigE) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto& result = out(pIsGigE);
        result = producer.IsGigE();
        return K_ST_SUCCESS;
    });
}

// The producer's port behind a module handle: our own objects stand for theirs.
static GenTL::PORT_HANDLE module_port(const GenICam::Factory::CTLWrapper& producer, void* module) {
    if (module == &producer) return producer.TL();
    if (is_live(module, HandleKind::camera)) return static_cast<CCameraClass*>(module)->RemoteDevice().Port();
    return module;
}

K_API K_STATUS_CODES K_CALL K_GenTL_Module_GetXmlString(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hModule, void* hOther,
                                                        char* buffer, uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& producer = transport_layer(hTransportLayer);
        handle(hOther);
        auto& size = out(pSize);
        auto port = module_port(producer, hModule);
        auto description = fetch_description(producer, port, description_url(producer, port));
        // Producers round lengths up and fill with NULs, which are no part of the text.
        description.resize(std::min(description.size(), std::strlen(description.c_str())));
        if (description.empty()) return K_ST_NO_DATA;
        if (buffer) return put_node_text(description, buffer, size);
        size = static_cast<uint32_t>(description.size());
        return K_ST_SUCCESS;
    });
}
