/// Reads the text of a description into records.
#pragma once

#include <string>

#include "record/records.h"

namespace kiv::genapi {

/// Fills an empty table. Elements that are not known are let pass. Throws RuntimeException when the text is no description.
void read_records(std::string description, RecordTable& table);

/// Throws RuntimeException for a version to come: it may mean other things by the same words.
void require_known_schema(const DescriptionInfo& info);

}  // namespace kiv::genapi
