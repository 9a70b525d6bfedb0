#pragma once
#include "imaging/canvas.hpp"
