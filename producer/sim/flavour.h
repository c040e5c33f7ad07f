/// What the two producers of these sources differ in: KivSim.cti speaks plain GenTL, KivSimGev.cti passes for one of GigE Vision
/// cameras and has the entry points beyond the standard. Each links its own definition.
#pragma once

namespace kivsim {

struct Flavour {
    const char* system_id;
    const char* model;
    const char* display_name;
    const char* tl_type;          ///< unless the configuration says otherwise
    const char* config_variable;  ///< environment variable that names the configuration file
    const char* state_folder;     ///< below the folder of all simulated cameras; empty: that folder itself
    bool gige;                    ///< addresses, event packets, start flag 1
};

extern const Flavour flavour;

}  // namespace kivsim
