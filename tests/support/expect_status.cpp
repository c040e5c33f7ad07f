#include "support/expect_status.h"

#include <kiv/factory.h>

#include <map>

namespace kiv_test {

std::string status_name(K_STATUS_CODES status) {
#define KIV_NAME(code) \
    { code, #code }
    static const std::map<K_STATUS_CODES, std::string> names = {KIV_NAME(K_ST_SUCCESS),
                                                                KIV_NAME(K_ST_ERROR),
                                                                KIV_NAME(K_ST_NOT_INITIALIZED),
                                                                KIV_NAME(K_ST_NOT_IMPLEMENTED),
                                                                KIV_NAME(K_ST_RESOURCE_IN_USE),
                                                                KIV_NAME(K_ST_ACCESS_DENIED),
                                                                KIV_NAME(K_ST_INVALID_HANDLE),
                                                                KIV_NAME(K_ST_INVALID_ID),
                                                                KIV_NAME(K_ST_NO_DATA),
                                                                KIV_NAME(K_ST_INVALID_PARAMETER),
                                                                KIV_NAME(K_ST_IO),
                                                                KIV_NAME(K_ST_TIMEOUT),
                                                                KIV_NAME(K_ST_ABORT),
                                                                KIV_NAME(K_ST_INVALID_BUFFER_SIZE),
                                                                KIV_NAME(K_ST_NOT_AVAILABLE),
                                                                KIV_NAME(K_ST_INVALID_ADDRESS),
                                                                KIV_NAME(K_ST_SETTINGS_FILE_ERROR),
                                                                KIV_NAME(K_ST_GC_ERROR),
                                                                KIV_NAME(K_ST_VALIDATION_ERROR),
                                                                KIV_NAME(K_ST_VALIDATION_WARNING)};
#undef KIV_NAME
    auto found = names.find(status);
    return found == names.end() ? std::to_string(status) : found->second;
}

K_GC_ERROR_INFO last_genicam_error() {
    K_GC_ERROR_INFO record{};
    K_Factory_GetGenICamErrorInfo(&record);
    return record;
}

::testing::AssertionResult status_is(const char*, const char* call_text, K_STATUS_CODES expected, K_STATUS_CODES seen) {
    if (expected == seen) return ::testing::AssertionSuccess();
    auto failure = ::testing::AssertionFailure();
    failure << call_text << "\n  returned " << status_name(seen) << " instead of " << status_name(expected);
    if (seen == K_ST_GC_ERROR) {
        auto record = last_genicam_error();
        failure << "\n  error record: " << record.sDescription << " [node '" << record.sNodeName << "']";
    }
    return failure;
}

::testing::AssertionResult is_genicam_error(const char*, const char*, const char* call_text, const std::string& description,
                                            const std::string& node, K_STATUS_CODES seen) {
    auto record = last_genicam_error();
    if (seen == K_ST_GC_ERROR && std::string(record.sDescription).find(description) != std::string::npos &&
        node == record.sNodeName)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << call_text << "\n  returned " << status_name(seen) << " with \"" << record.sDescription
                                         << "\" of node '" << record.sNodeName << "'\n  instead of K_ST_GC_ERROR with \""
                                         << description << "\" of node '" << node << "'";
}

}  // namespace kiv_test
