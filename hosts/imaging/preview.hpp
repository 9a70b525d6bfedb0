#pragma once
#include "imaging/stretch.hpp"
