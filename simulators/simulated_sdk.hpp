// Turns the declarations of a maker's functions into exports of a simulated SDK.
//
// The declarations in src/vendors/sdk/ are written once, for the library that calls the SDKs. A
// file that includes this header first gets the declaration of an exported C function for each
// SDK_FUNCTION line there. The simulated SDK defines the functions inside extern "C". C functions
// cannot be overloaded, so a definition that differs from what the library calls does not compile.
#pragma once

#include "simulator_control.h"

#define SDK_FUNCTION(maker, name, ...) \
  using name##Signature = __VA_ARGS__; \
  extern "C" ORVANE_SIMULATOR_API name##Signature name

#define SDK_HRESULT_FUNCTION(maker, name, ...) SDK_FUNCTION(maker, name, __VA_ARGS__)
