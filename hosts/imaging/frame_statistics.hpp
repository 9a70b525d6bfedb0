#pragma once
#include "imaging/statistics.hpp"
