#include "flavour.h"

namespace kivsim {

const Flavour flavour = {"KIV_SIM", "KivSim", "KivSim simulated cameras", "Custom", "KIV_SIM_CONFIG", "", false};

}  // namespace kivsim
