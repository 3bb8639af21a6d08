#include "umc/ColorFormat.h"

namespace UMC {

namespace {

constexpr PlaneLayout kFull{1, 1, 1};
constexpr PlaneLayout kNone{0, 0, 0};

constexpr ColorFormatInfo kFormats[] = {
    {YV12, 3, 8, 1, {kFull, {2, 2, 1}, {2, 2, 1}, kNone}},
    {NV12, 2, 8, 2, {kFull, {1, 2, 1}, kNone, kNone}},
    {YUY2, 1, 8, 2, {{2, 1, 4}, kNone, kNone, kNone}},
    {UYVY, 1, 8, 2, {{2, 1, 4}, kNone, kNone, kNone}},
    {YUV411, 3, 8, 1, {kFull, {4, 1, 1}, {4, 1, 1}, kNone}},
    {YUV420, 3, 8, 1, {kFull, {2, 2, 1}, {2, 2, 1}, kNone}},
    {YUV422, 3, 8, 1, {kFull, {2, 1, 1}, {2, 1, 1}, kNone}},
    {YUV444, 3, 8, 1, {kFull, kFull, kFull, kNone}},
    {YUV_VC1, 3, 8, 1, {kFull, {2, 2, 1}, {2, 2, 1}, kNone}},
    {Y411, 1, 8, 2, {{4, 1, 6}, kNone, kNone, kNone}},
    {Y41P, 1, 8, 2, {{8, 1, 12}, kNone, kNone, kNone}},
    {RGB32, 1, 8, 1, {{1, 1, 4}, kNone, kNone, kNone}},
    {RGB24, 1, 8, 4, {{1, 1, 3}, kNone, kNone, kNone}},
    {RGB565, 1, 16, 2, {kFull, kNone, kNone, kNone}},
    {RGB555, 1, 16, 2, {kFull, kNone, kNone, kNone}},
    {RGB444, 1, 16, 2, {kFull, kNone, kNone, kNone}},
    {GRAY, 1, 8, 1, {kFull, kNone, kNone, kNone}},
    {YUV420A, 4, 8, 1, {kFull, {2, 2, 1}, {2, 2, 1}, kFull}},
    {YUV422A, 4, 8, 1, {kFull, {2, 1, 1}, {2, 1, 1}, kFull}},
    {YUV444A, 4, 8, 1, {kFull, kFull, kFull, kFull}},
    {YVU9, 3, 8, 1, {kFull, {4, 4, 1}, {4, 4, 1}, kNone}},
    {GRAYA, 2, 8, 1, {kFull, kFull, kNone, kNone}},
    {COMPRESSED_A, 0, 0, 0, {kNone, kNone, kNone, kNone}},
    {COMPRESSED_B, 0, 0, 0, {kNone, kNone, kNone, kNone}},
};

}  // namespace

const ColorFormatInfo* FindColorFormat(int32_t format) {
  for (const ColorFormatInfo& row : kFormats)
    if (row.format == format) return &row;
  return nullptr;
}

}  // namespace UMC
