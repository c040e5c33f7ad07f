#include "api/guard.h"

#include <kiv/platform/debug_output.h>

#include <string>

#include "api/error_record.h"

namespace kiv::api {

K_STATUS_CODES status_of_current_exception() noexcept try { throw; } catch (const StatusError& error) {
    return error.code;
} catch (const GenICam::GenericException& error) {
    record_genicam_error(error);
    return K_ST_GC_ERROR;
} catch (const std::exception& error) {
    platform::debug_print("Kiv_Factory: ");
    platform::debug_print(error.what());
    platform::debug_print("\n");
    return K_ST_ERROR;
} catch (...) {
    return K_ST_ERROR;
}

}  // namespace kiv::api
