#include "status_names.h"

#include <algorithm>
#include <array>

namespace {

// Producers of newer GenTL versions return codes for which the library has no name of its own: those carry the standard's.
constexpr std::array kNames{
    StatusName{K_ST_SUCCESS, "K_ST_SUCCESS", "success"},
    StatusName{K_ST_ERROR, "K_ST_ERROR", "unspecified failure"},
    StatusName{K_ST_NOT_INITIALIZED, "K_ST_NOT_INITIALIZED", "the producer is not initialised"},
    StatusName{K_ST_NOT_IMPLEMENTED, "K_ST_NOT_IMPLEMENTED", "the producer does not offer this"},
    StatusName{K_ST_RESOURCE_IN_USE, "K_ST_RESOURCE_IN_USE", "in use already, by this or by another program"},
    StatusName{K_ST_ACCESS_DENIED, "K_ST_ACCESS_DENIED", "access denied; another program may hold it"},
    StatusName{K_ST_INVALID_HANDLE, "K_ST_INVALID_HANDLE", "not open"},
    StatusName{K_ST_INVALID_ID, "K_ST_INVALID_ID", "there is nothing of that identifier"},
    StatusName{K_ST_NO_DATA, "K_ST_NO_DATA", "nothing there"},
    StatusName{K_ST_INVALID_PARAMETER, "K_ST_INVALID_PARAMETER", "an argument is not acceptable"},
    StatusName{K_ST_IO, "K_ST_IO", "communication or file error"},
    StatusName{K_ST_TIMEOUT, "K_ST_TIMEOUT", "no answer in time"},
    StatusName{K_ST_ABORT, "K_ST_ABORT", "aborted"},
    StatusName{K_ST_INVALID_BUFFER_SIZE, "K_ST_INVALID_BUFFER_SIZE", "the buffer is too small"},
    StatusName{K_ST_NOT_AVAILABLE, "K_ST_NOT_AVAILABLE", "not available at present"},
    StatusName{K_ST_INVALID_ADDRESS, "K_ST_INVALID_ADDRESS", "no such address in the device"},
    StatusName{-1016, "GC_ERR_BUFFER_TOO_SMALL", "the buffer is too small"},
    StatusName{-1017, "GC_ERR_INVALID_INDEX", "the index is out of bounds"},
    StatusName{-1018, "GC_ERR_PARSING_CHUNK_DATA", "the chunk data is malformed"},
    StatusName{-1019, "GC_ERR_INVALID_VALUE", "the value is not acceptable"},
    StatusName{-1020, "GC_ERR_RESOURCE_EXHAUSTED", "a resource is used up"},
    StatusName{-1021, "GC_ERR_OUT_OF_MEMORY", "out of memory"},
    StatusName{-1022, "GC_ERR_BUSY", "busy with something else"},
    StatusName{-1023, "GC_ERR_AMBIGUOUS", "the request is ambiguous"},
    StatusName{K_ST_SETTINGS_FILE_ERROR, "K_ST_SETTINGS_FILE_ERROR", "the settings file cannot be read"},
    StatusName{K_ST_GC_ERROR, "K_ST_GC_ERROR", "the camera's features refused it"},
    StatusName{K_ST_VALIDATION_ERROR, "K_ST_VALIDATION_ERROR", "the settings do not fit the camera"},
    StatusName{K_ST_VALIDATION_WARNING, "K_ST_VALIDATION_WARNING", "some settings do not fit the camera"},
};
constexpr StatusName kUnknown{0, "unknown status", "a code that no standard defines"};

}  // namespace

const StatusName& status_name(K_STATUS_CODES code) {
    const auto* found = std::find_if(kNames.begin(), kNames.end(), [code](const StatusName& row) { return row.code == code; });
    return found != kNames.end() ? *found : kUnknown;
}

std::string status_text(K_STATUS_CODES code) { return std::string(status_name(code).name) + " (" + std::to_string(code) + ")"; }
