/// The process-wide record of the last GenICam error. It is overwritten by the next one, of whatever thread, and never reset.
#pragma once

#include <GenICam/exceptions.h>
#include <kiv/types.h>

namespace kiv::api {

/// Keeps description and node name, cut to the record's fields.
void record_genicam_error(const GenICam::GenericException& error) noexcept;

/// The same with a node name of the caller's choice: look-ups by name have none.
void record_genicam_error(const char* description, const char* node) noexcept;

void copy_error_record(K_GC_ERROR_INFO& info) noexcept;

}  // namespace kiv::api
