#include "error.h"

#include <kiv/factory.h>

#include "status_names.h"
#include "text.h"

std::string explain(K_STATUS_CODES status) {
    const std::string head = status_text(status) + ": ";
    K_GC_ERROR_INFO record{};
    if (status != K_ST_GC_ERROR || K_Factory_GetGenICamErrorInfo(&record) != K_ST_SUCCESS || record.sDescription[0] == '\0')
        return head + status_name(status).meaning;
    const std::string node = record.sNodeName;
    return head + printable(record.sDescription) + (node.empty() ? "" : " [node " + printable(node) + "]");
}

std::string failure_text(K_STATUS_CODES status, std::string_view call, std::string_view argument) {
    std::string text(call);
    if (!argument.empty()) text += "(\"" + printable(argument) + "\")";
    return text + " failed: " + explain(status);
}

void check(K_STATUS_CODES status, std::string_view call, std::string_view argument, ExitCode exit) {
    if (status != K_ST_SUCCESS) throw ApiError(exit, failure_text(status, call, argument), status);
}
