// Every maker's SDK, in the order of Vendor. Who defines SDK_FUNCTION and SDK_HRESULT_FUNCTION
// before including this makes a list of all functions out of their declarations.
#pragma once

// clang-format off
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"
// clang-format on
