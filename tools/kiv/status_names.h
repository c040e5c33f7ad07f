/// The one table of status codes: their names and what they mean to a person.
#pragma once

#include <kiv/types.h>

#include <string>

struct StatusName {
    K_STATUS_CODES code;
    const char* name;
    const char* meaning;
};

/// Never null; a code that nobody defined gets a row that says so.
const StatusName& status_name(K_STATUS_CODES code);

/// "K_ST_TIMEOUT (-1011)"
std::string status_text(K_STATUS_CODES code);
