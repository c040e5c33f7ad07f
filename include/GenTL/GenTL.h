/* The GenTL 1.5 C interface between camera producers (.cti files) and their consumers, written from the standard. */
#ifndef GENTL_GENTL_H
#define GENTL_GENTL_H

#include "GenTL/enums.h"
#include "GenTL/functions.h"
#include "GenTL/types.h"

#endif
