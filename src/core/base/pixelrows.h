#pragma once

#include <QtGlobal>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

/**
 * Writing runs of pixels into pictures far larger than the caches, when the caller does not read them back soon:
 * aligned runs bypass the caches, which saves reading every line in before it is overwritten.
 */
namespace PixelRows {

/** Copies @p count 32-bit pixels from @p in (16-byte aligned) to @p out. Call finish() when the writes are done. */
inline void store(uchar* out, const quint32* in, int count)
{
#ifdef __SSE2__
    if ((reinterpret_cast<quintptr>(out) & 15) == 0 && count % 4 == 0) {
        for (int i = 0; i < count; i += 4)
            _mm_stream_si128(
                reinterpret_cast<__m128i*>(out) + i / 4, _mm_load_si128(reinterpret_cast<const __m128i*>(in + i)));
        return;
    }
#endif
    std::memcpy(out, in, size_t(count) * 4);
}

/** Orders the stores before whatever the thread does next, such as telling others the picture is ready. */
inline void finish()
{
#ifdef __SSE2__
    _mm_sfence();
#endif
}

} // namespace PixelRows
