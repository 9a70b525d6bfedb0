// The types of the makers' functions, name##Signature. The floors look up each function by name.
#pragma once

#define SDK_FUNCTION(maker, name, ...) using name##Signature = __VA_ARGS__
#define SDK_HRESULT_FUNCTION(maker, name, ...) SDK_FUNCTION(maker, name, __VA_ARGS__)
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

/// One SDK call of a floor: a look-up and a call.
#define FLOOR_CALL(sdk, name) \
  (reinterpret_cast<name##Signature*>(platform::findFunction((sdk).module, #name)))
