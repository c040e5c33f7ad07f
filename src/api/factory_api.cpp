// K_Factory_*
#include <kiv/factory.h>
#include <kiv/platform/file_version.h>

#include "api/checks.h"
#include "api/error_record.h"
#include "api/text_out.h"
#include "camera/module_node_map.h"
#include "camera/open_cameras.h"
#include "transport/sdk_paths.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CFactory;

K_API K_STATUS_CODES K_CALL K_Factory_Open(const char* registryPath, FACTORY_HANDLE* phFactory) {
    return guarded_as(K_ST_INVALID_ADDRESS, [&]() -> K_STATUS_CODES {
        out(phFactory) = nullptr;
        auto file = GenICam::Factory::find_registry_file(registryPath);
        require(!file.empty());
        auto opened = std::make_unique<CFactory>(std::move(file), GenICam::Factory::read_own_node_map);
        auto lists_producers = opened->ListsProducers();
        *phFactory = handle_to<FACTORY_HANDLE>(opened.release());
        return lists_producers ? K_ST_SUCCESS : K_ST_NO_DATA;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_Close(FACTORY_HANDLE hFactory) {
    return guarded([&]() -> K_STATUS_CODES {
        if (!retire_handle(hFactory, HandleKind::factory)) return K_ST_INVALID_HANDLE;
        std::unique_ptr<CFactory> closed(reinterpret_cast<CFactory*>(hFactory));
        GenICam::Factory::open_cameras().CloseAllOf(*closed);
        return K_ST_SUCCESS;
    });
}

static std::string product_version() {
    auto version = platform::product_version_of(library_file());
    if (!version) return KIV_VERSION;
    return std::to_string(version->major_number) + "." + std::to_string(version->minor_number) + "." +
           std::to_string(version->build_number);
}

K_API K_STATUS_CODES K_CALL K_Factory_GetInfo(uint32_t infoId, char* buffer, uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        // Numbers 1 and 2 name the interface's own build, by which callers recognise it, not that of this file.
        const std::string facts[] = {infoId == 0 ? product_version() : std::string(), "Feb 22 2018", "18:58:43", "KIV"};
        if (infoId >= std::size(facts)) return K_ST_SUCCESS;
        auto& text = facts[infoId];
        if (buffer) buffer[text.copy(buffer, text.size())] = '\0';
        if (pSize) *pSize = static_cast<uint32_t>(text.size() + 1);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_UpdateCameraList(FACTORY_HANDLE hFactory, bool8_kiv* pChanged) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        out(pChanged) = false;
        return opened.Update(*pChanged);
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetNumOfCameras(FACTORY_HANDLE hFactory, uint32_t* pNum) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& count = out(pNum);
        auto status = opened.EnsureListed();
        if (status == K_ST_SUCCESS) count = static_cast<uint32_t>(opened.Cameras().size());
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetCameraIDByIndex(FACTORY_HANDLE hFactory, uint32_t index, char* buffer, uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& opened = factory(hFactory);
        auto& size = out(pSize);
        require_success(opened.EnsureListed());
        auto cameras = opened.Cameras();
        require(index < cameras.size());
        return put_text(cameras[index], buffer, size);
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetCameraInfo(FACTORY_HANDLE hFactory, const char* cameraId, uint32_t infoCmd, char* buffer,
                                                    uint32_t* pSize) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& size = out(pSize);
        return opened.CameraInfo(cameraId, infoCmd, buffer, size);
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetCameraAccess(FACTORY_HANDLE hFactory, const char* cameraId, int32_t* pAccess) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& access = out(pAccess);
        return opened.CameraAccess(cameraId, access);
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetGenICamErrorInfo(K_GC_ERROR_INFO* pInfo) {
    return guarded([&] {
        copy_error_record(out(pInfo));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_GetProducerReport(FACTORY_HANDLE hFactory, uint32_t index, K_PRODUCER_REPORT* pReport) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& report = out(pReport);
        require(opened.Report(index, report));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_EnableForceIp(FACTORY_HANDLE hFactory, uint32_t enable) {
    return guarded([&] {
        factory(hFactory).EnableForceIp(enable);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_SendActionCommand(FACTORY_HANDLE hFactory, uint32_t deviceKey, uint32_t groupKey,
                                                        uint32_t groupMask, void* argument1, void* argument2) {
    return guarded([&] {
        factory(hFactory).SendActionCommand(deviceKey, groupKey, groupMask, argument1, argument2);
        return K_ST_SUCCESS;
    });
}
