// The colours of charts and plots.
#pragma once

#include "imaging/canvas.hpp"

namespace orvane::host::chart {

inline constexpr Colour paper{255, 255, 255};
inline constexpr Colour grid{216, 220, 226};
inline constexpr Colour ink{32, 36, 44};
inline constexpr Colour faintInk{104, 112, 124};
inline constexpr Colour blue{46, 110, 180};
inline constexpr Colour orange{214, 116, 36};
inline constexpr Colour red{190, 52, 52};

}  // namespace orvane::host::chart
