/// The cameras that are there, and finding the one that a person means.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "session.h"

struct CameraEntry {
    std::size_t index = 0;
    std::string id;
    std::string device_id;
    std::string vendor;
    std::string model;
    std::string serial;
    std::string user_name;
    std::string state;  ///< "free", "busy", ... or "unknown"
};

/// The keys are documented in docs/kiv-tool.md.
nlohmann::json to_json(const CameraEntry& camera);

std::vector<CameraEntry> list_cameras(Factory& factory);

/**
 * The camera that a word names: its index, its identifier (or only the device's part of it), its serial number, or its user name.
 * "index:", "id:", "serial:" or "name:" before the word says which is meant.
 * Throws ExitCode::kNothingFound without any camera, ExitCode::kNoSuchCamera when none or several fit.
 */
CameraEntry find_camera(Factory& factory, const std::string& word);
