#include "flavour.h"

namespace kivsim {

const Flavour flavour = {
    "KIV_SIM_GEV", "KivSimGev", "KivSimGev simulated GigE Vision cameras", "GigEVision", "KIV_SIM_GEV_CONFIG", "gev", true};

}  // namespace kivsim
