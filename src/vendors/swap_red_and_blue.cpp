// Turning blue-green-red pixels into red-green-blue ones. Compilers make nothing of the plain loop,
// so the two vector ways are written out.
#include "vendors/swap_red_and_blue.hpp"

#include <utility>

#if defined(__x86_64__) || defined(_M_X64)
#  define ORVANE_HAS_X64_VECTORS 1
#  include <immintrin.h>
#  if defined(_MSC_VER) && !defined(__clang__)
#    include <intrin.h>
#    define ORVANE_TARGET(features)
#  else
#    define ORVANE_TARGET(features) __attribute__((target(features)))
#  endif
#endif

namespace orvane {

namespace {

void exchangeScalar(std::uint8_t* pixels, std::size_t pixelCount) {
  for (const std::uint8_t* const end = pixels + 3 * pixelCount; pixels != end; pixels += 3) {
    std::swap(pixels[0], pixels[2]);
  }
}

#ifdef ORVANE_HAS_X64_VECTORS

// How far ahead of the pixels at hand the next ones are asked for: the processor's own guesses
// leave a ninth of the memory's speed unused in frames that no cache holds. Asking beyond the
// frame's end does no harm: what cannot be read is not fetched.
constexpr std::ptrdiff_t fetchAhead = 3072;

// Windows of 15 bytes, five pixels: one load of 16, one shuffle, one store, with byte 15 written
// back as it was. Windows overlap by that byte, so they are stored in rising order, and every load
// comes before the store that overlaps it: behind it, it would wait for the store to reach the
// cache.
ORVANE_TARGET("ssse3")
void exchangeSsse3(std::uint8_t* pixels, std::size_t pixelCount) {
  constexpr std::ptrdiff_t window = 15;
  constexpr std::size_t pixelsInBlock = 40;  // eight windows
  const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
  const auto load = [](const std::uint8_t* from) ORVANE_TARGET("ssse3") {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  };
  const auto store = [order](std::uint8_t* to, __m128i bytes) ORVANE_TARGET("ssse3") {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(bytes, order));
  };
  // Six pixels more than a block, because the next block's first window is loaded with it.
  if (pixelCount >= pixelsInBlock + 6) {
    __m128i first = load(pixels);
    do {
      _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead), _MM_HINT_T0);
      _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead + 60), _MM_HINT_T0);
      const __m128i w1 = load(pixels + window);
      const __m128i w2 = load(pixels + 2 * window);
      const __m128i w3 = load(pixels + 3 * window);
      const __m128i w4 = load(pixels + 4 * window);
      const __m128i w5 = load(pixels + 5 * window);
      const __m128i w6 = load(pixels + 6 * window);
      const __m128i w7 = load(pixels + 7 * window);
      const __m128i next = load(pixels + 8 * window);
      store(pixels, first);
      store(pixels + window, w1);
      store(pixels + 2 * window, w2);
      store(pixels + 3 * window, w3);
      store(pixels + 4 * window, w4);
      store(pixels + 5 * window, w5);
      store(pixels + 6 * window, w6);
      store(pixels + 7 * window, w7);
      first = next;
      pixels += 8 * window;
      pixelCount -= pixelsInBlock;
    } while (pixelCount >= pixelsInBlock + 6);
  }
  exchangeScalar(pixels, pixelCount);
}

// Blocks of 96 bytes, 32 pixels, as three registers: the lower lane of register k holds the 16
// bytes at 16 k, the upper those at 48 + 16 k. 48 bytes are whole pixels, so no byte has to cross
// lanes. In each lane the bytes of two pixels lie in two registers: byte 15 of `a` with byte 1 of
// `b`, and byte 14 of `b` with byte 0 of `c`.
//
// One function without calls while 256-bit registers are in use, and with unaligned accesses only:
// on Windows x64 the stack is aligned to 16 bytes, and GCC does not align what it spills there.
ORVANE_TARGET("avx2")
void exchangeAvx2(std::uint8_t* pixels, std::size_t pixelCount) {
  // To a 32-byte boundary first, pixel by pixel: 3 x 21 is -1 modulo 32, so some number of pixels
  // below 32 always leads there. Lines that lie across two cache lines cost more than that.
  std::size_t peeled = (reinterpret_cast<std::uintptr_t>(pixels) * 21) % 32;
  peeled = peeled < pixelCount ? peeled : pixelCount;
  exchangeScalar(pixels, peeled);
  pixels += 3 * peeled;
  pixelCount -= peeled;

  constexpr char none = -128;
  const __m256i orderA = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, none));
  const __m256i orderB = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, none, 4, 3, 2, 7, 6, 5, 10, 9, 8, 13, 12, 11, none, 15));
  const __m256i orderC = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(none, 3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10, 15, 14, 13));
  // From a register with the ends of `a` and `c`, what belongs into `b`; and the other way round.
  const __m256i intoB = _mm256_broadcastsi128_si256(_mm_setr_epi8(
      none, 15, none, none, none, none, none, none, none, none, none, none, none, none, 0, none));
  const __m256i outOfB = _mm256_broadcastsi128_si256(_mm_setr_epi8(
      14, none, none, none, none, none, none, none, none, none, none, none, none, none, none, 1));
  const __m256i zero = _mm256_setzero_si256();

  for (; pixelCount >= 32; pixelCount -= 32, pixels += 96) {
    auto* const lower = reinterpret_cast<__m128i*>(pixels);
    auto* const upper = reinterpret_cast<__m128i*>(pixels + 48);
    _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead + 48), _MM_HINT_T0);
    const __m256i a = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(lower)),
                                              _mm_loadu_si128(upper), 1);
    const __m256i b = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(lower + 1)),
                                              _mm_loadu_si128(upper + 1), 1);
    const __m256i c = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(lower + 2)),
                                              _mm_loadu_si128(upper + 2), 1);
    const __m256i ends = _mm256_blend_epi16(a, c, 0x01);
    const __m256i middles = _mm256_shuffle_epi8(b, outOfB);
    const __m256i newA =
        _mm256_or_si256(_mm256_shuffle_epi8(a, orderA), _mm256_blend_epi16(zero, middles, 0x80));
    const __m256i newB =
        _mm256_or_si256(_mm256_shuffle_epi8(b, orderB), _mm256_shuffle_epi8(ends, intoB));
    const __m256i newC =
        _mm256_or_si256(_mm256_shuffle_epi8(c, orderC), _mm256_blend_epi16(zero, middles, 0x01));
    _mm_storeu_si128(lower, _mm256_castsi256_si128(newA));
    _mm_storeu_si128(lower + 1, _mm256_castsi256_si128(newB));
    _mm_storeu_si128(lower + 2, _mm256_castsi256_si128(newC));
    _mm_storeu_si128(upper, _mm256_extracti128_si256(newA, 1));
    _mm_storeu_si128(upper + 1, _mm256_extracti128_si256(newB, 1));
    _mm_storeu_si128(upper + 2, _mm256_extracti128_si256(newC, 1));
  }
  _mm256_zeroupper();  // GCC leaves it away before a call of a function of its own file
  exchangeScalar(pixels, pixelCount);
}

#  if defined(_MSC_VER) && !defined(__clang__)

bool hasSsse3() {
  int registers[4];
  __cpuid(registers, 1);
  return (registers[2] & (1 << 9)) != 0;
}

// AVX2 needs the system to save the wide registers, too.
bool hasAvx2() {
  int registers[4];
  __cpuid(registers, 0);
  if (registers[0] < 7) {
    return false;
  }
  __cpuid(registers, 1);
  const bool savesRegisters = (registers[2] & (1 << 27)) != 0 && (_xgetbv(0) & 6) == 6;
  __cpuidex(registers, 7, 0);
  return savesRegisters && (registers[1] & (1 << 5)) != 0;
}

#  else

// The compiler's own test asks the operating system's side, too.
bool hasSsse3() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("ssse3") != 0;
}

bool hasAvx2() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") != 0;
}

#  endif
#endif

// Frames of more bytes lie in no cache. There the narrower registers are the faster ones: they keep
// more of the memory's speed, by 5 to 20 percent of it.
constexpr std::size_t mostBytesInCaches = std::size_t{16} << 20;

const ByteExchange fastestInCaches = isSupported(ByteExchange::Avx2)    ? ByteExchange::Avx2
                                     : isSupported(ByteExchange::Ssse3) ? ByteExchange::Ssse3
                                                                        : ByteExchange::Scalar;
const ByteExchange fastestBeyondCaches =
    isSupported(ByteExchange::Ssse3) ? ByteExchange::Ssse3 : ByteExchange::Scalar;

}  // namespace

bool isSupported(ByteExchange way) {
#ifdef ORVANE_HAS_X64_VECTORS
  switch (way) {
    case ByteExchange::Avx2:
      return hasAvx2();
    case ByteExchange::Ssse3:
      return hasSsse3();
    case ByteExchange::Scalar:
      return true;
  }
#endif
  return way == ByteExchange::Scalar;
}

ByteExchange fastestByteExchange(std::size_t byteCount) {
  return byteCount <= mostBytesInCaches ? fastestInCaches : fastestBeyondCaches;
}

void exchangeRedAndBlue(std::uint8_t* pixels, std::size_t byteCount) {
  exchangeRedAndBlue(fastestByteExchange(byteCount), pixels, byteCount);
}

void exchangeRedAndBlue(ByteExchange way, std::uint8_t* pixels, std::size_t byteCount) {
  const std::size_t pixelCount = (byteCount + 2) / 3;
  switch (way) {
#ifdef ORVANE_HAS_X64_VECTORS
    case ByteExchange::Avx2:
      exchangeAvx2(pixels, pixelCount);
      return;
    case ByteExchange::Ssse3:
      exchangeSsse3(pixels, pixelCount);
      return;
#endif
    default:
      exchangeScalar(pixels, pixelCount);
  }
}

}  // namespace orvane
