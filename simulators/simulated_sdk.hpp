// Turns a maker's declarations into the ones that a simulated SDK defines.
//
// The declarations in src/vendors/sdk/ are written once, for the library that calls the SDKs. A
// file that includes this header first gets, for each SDK_FUNCTION line there, the declaration of
// an exported C function. Its definition follows in the simulated SDK, inside extern "C": two C
// functions of one name cannot differ, so a simulation that drifts from what the library calls does
// not compile.
#pragma once

#include "simulator_control.h"

#define SDK_FUNCTION(maker, name, ...) \
  using name##Signature = __VA_ARGS__; \
  extern "C" ORVANE_SIMULATOR_API name##Signature name

#define SDK_HRESULT_FUNCTION(maker, name, ...) SDK_FUNCTION(maker, name, __VA_ARGS__)
