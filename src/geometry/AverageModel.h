#pragma once
// The frame loops of CIppAverageImage: the 8- and 16-bit models that the
// plain, YUV and planar forms run as, and the four-sample pixel forms. Each
// splits the frame over the team in bands of whole rows; a band of a tightly
// packed frame is one run of samples, which the row kernels take at once.
// Each answers false, touching nothing, for a frame count below 1 or a
// missing pointer, and true with nothing done for an empty frame.
#include <cstdint>

namespace kestrelink::average {

// The output limit of a 16-bit form, (1 << bitDepth) - 1, kept inside int.
int32_t DepthLimit(int bitDepth);

// `samples` a row: bytes of 1 (sampleBytes 1) or words (2).
bool Full(int n, int64_t samples, int32_t height, uint32_t sampleBytes, int32_t max, void* const* frames, int* sums,
          void* dst);
bool Rolling(int n, int64_t samples, int32_t height, uint32_t sampleBytes, int32_t max, const void* in, const void* out,
             int* sums, void* dst);

// Pixels of four samples, three of them averaged.
bool Full4(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, void* const* frames, int* sums,
           void* dst);
bool Rolling4Bytes(int n, int32_t width, int32_t height, const void* in, const void* out, int* sums, void* dst);

// The three planes of a planar form, one model call each; plane p of the
// sums starts p * width * height integers in.
bool FullPlanes(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, void* const* const frames[3],
                int* sums, void* const dst[3]);
bool RollingPlanes(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, const void* const in[3],
                   const void* const out[3], int* sums, void* const dst[3]);

}  // namespace kestrelink::average
