// The panel integrals of eight panels at a time.
#pragma once

#include "rankine/panint.hpp"
#include "rankine/panint_lanes.hpp"

void panint_near_eight(const PanelLanes<ABREAST> &p, int order, int ILOGF, NearIntegrals<ABREAST> &out);
