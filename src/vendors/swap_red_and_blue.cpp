// Compilers do not vectorise the plain loop, so the SSSE3 version is written by hand.
#include "vendors/swap_red_and_blue.hpp"

#include <utility>

#if defined(__x86_64__) || defined(_M_X64)
#  define ORVANE_HAS_SSSE3 1
#  include <tmmintrin.h>
#  if defined(_MSC_VER) && !defined(__clang__)
#    include <intrin.h>
#    define ORVANE_SSSE3
#  else
#    define ORVANE_SSSE3 __attribute__((target("ssse3")))
#  endif
#endif

namespace orvane {

namespace {

void swapScalar(std::uint8_t* pixels, std::size_t pixelCount) {
  for (const std::uint8_t* const end = pixels + 3 * pixelCount; pixels != end; pixels += 3) {
    std::swap(pixels[0], pixels[2]);
  }
}

#ifdef ORVANE_HAS_SSSE3

// Windows of 15 bytes, five pixels: one load of 16 bytes, one shuffle, one store, which writes byte
// 15 back unchanged. Windows overlap by that byte, so they are stored in ascending order. All loads
// of a block come before its stores: a load that overlaps a pending store waits for it.
ORVANE_SSSE3 void swapSsse3(std::uint8_t* pixels, std::size_t pixelCount) {
  constexpr std::ptrdiff_t window = 15;
  constexpr int windowsInBlock = 8;
  constexpr std::size_t pixelsInBlock = 40;
  const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
  const auto load = [](const std::uint8_t* from) ORVANE_SSSE3 {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  };
  // A block loads the first window of the next one, too, and that load ends six pixels behind it.
  if (pixelCount >= pixelsInBlock + 6) {
    __m128i windows[windowsInBlock + 1] = {load(pixels)};
    do {
      for (int i = 1; i <= windowsInBlock; ++i) {
        windows[i] = load(pixels + i * window);
      }
      for (int i = 0; i < windowsInBlock; ++i) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels + i * window),
                         _mm_shuffle_epi8(windows[i], order));
      }
      windows[0] = windows[windowsInBlock];
      pixels += windowsInBlock * window;
      pixelCount -= pixelsInBlock;
    } while (pixelCount >= pixelsInBlock + 6);
  }
  swapScalar(pixels, pixelCount);
}

bool hasSsse3() {
#  if defined(_MSC_VER) && !defined(__clang__)
  int registers[4];
  __cpuid(registers, 1);
  return (registers[2] & (1 << 9)) != 0;
#  else
  __builtin_cpu_init();
  return __builtin_cpu_supports("ssse3") != 0;
#  endif
}

#endif

const SwapImplementation fastest =
    isSupported(SwapImplementation::Ssse3) ? SwapImplementation::Ssse3 : SwapImplementation::Scalar;

}  // namespace

bool isSupported(SwapImplementation implementation) {
#ifdef ORVANE_HAS_SSSE3
  return implementation == SwapImplementation::Scalar || hasSsse3();
#else
  return implementation == SwapImplementation::Scalar;
#endif
}

SwapImplementation fastestSwap() {
  return fastest;
}

void swapRedAndBlue(std::uint8_t* pixels, std::size_t byteCount) {
  swapRedAndBlue(fastest, pixels, byteCount);
}

void swapRedAndBlue(SwapImplementation implementation, std::uint8_t* pixels,
                    std::size_t byteCount) {
  const std::size_t pixelCount = (byteCount + 2) / 3;
#ifdef ORVANE_HAS_SSSE3
  if (implementation == SwapImplementation::Ssse3) {
    swapSsse3(pixels, pixelCount);
    return;
  }
#endif
  static_cast<void>(implementation);
  swapScalar(pixels, pixelCount);
}

}  // namespace orvane
