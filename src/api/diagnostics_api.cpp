// Diagnostics and the environment: debugger output, logging, "$(NAME)" expansion, installed versions.
#include <GenICam/gcstring.h>
#include <kiv/diagnostics.h>
#include <kiv/platform/debug_output.h>

#include <atomic>
#include <cstring>
#include <string>
#include <string_view>

#include "api/checks.h"
#include "diagnostics/installed_version.h"
#include "diagnostics/logging.h"

using namespace kiv;
using namespace kiv::api;

namespace {

// The platform's sink and the C callback differ in the order of their arguments.
std::atomic<K_DEBUG_OUTPUT_CALLBACK> debug_callback = nullptr;

void forward(const char* text, void* context) {
    if (auto callback = debug_callback.load()) callback(context, text);
}

/// All of the text or nothing: K_ST_INVALID_PARAMETER when it does not fit.
void put_whole(const std::string& text, char* buffer, std::size_t size) {
    require(text.size() < size);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
}

}  // namespace

K_API K_STATUS_CODES K_CALL K_SetDebugOutput(K_DEBUG_OUTPUT_CALLBACK callback, void* context) {
    return guarded([&] {
        platform::set_debug_sink(nullptr, nullptr);
        debug_callback = callback;
        if (callback) platform::set_debug_sink(forward, context);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_EnableLogging(bool8_kiv genApi, bool8_kiv genTL, bool8_kiv clProtocol, bool8_kiv producers,
                                            const char* fileName, const char* level, const char* pattern) {
    return guarded_as(K_ST_IO, [&] {
        const bool writes_properties = (genApi || genTL || clProtocol) && fileName;
        require(!writes_properties || (level && pattern));
        // To producers a null level is an unknown one.
        enable_logging({genApi, genTL, clProtocol, producers, fileName, level ? level : "", pattern ? pattern : ""});
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_EnableLoggingFromFile(const char* propertyFile) {
    return guarded_as(K_ST_IO, [&] {
        enable_logging_from_file(propertyFile);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_DisableLogging(void) {
    disable_logging();
    return K_ST_SUCCESS;
}

K_API K_STATUS_CODES K_CALL K_ReplaceEnvironmentVariables(char* text, uint32_t size) {
    return guarded_as(K_ST_INVALID_PARAMETER, [&] {
        out(text);
        std::string_view given(text, size);
        auto length = given.find('\0');
        require(length != std::string_view::npos);
        put_whole(GenICam::ReplaceEnvironmentVariables(given.substr(0, length)), text, size);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GetSdkInstallerVersion(const K_INSTALLER_ENTRY* entries, char* version, uint16_t size) {
    return guarded([&] {
        out(entries), out(version);
        for (auto* entry = entries; entry->platform != 0; ++entry) {
            auto product = installed_product_code(entry->upgradeCode ? entry->upgradeCode : "");
            if (!product) continue;
            if (!product_is_registered(*product)) return K_ST_NO_DATA;
            if (auto text = installed_version({*product, entry->platform})) put_whole(*text, version, size);
            return K_ST_SUCCESS;
        }
        return K_ST_NO_DATA;
    });
}
