// Every vector variant of the resize rows against the portable rows, sample
// for sample, on random tables and rows, every length up to a few vectors,
// with the fourth sample kept and not, and guard samples after each output.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "primitives/ResizeEngine.h"
#include "primitives/ResizeRows.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::resize;

const ResizeRowKernels* Table(kestrelink::CpuVariant v) {
  const ResizeRowKernels* tables[] = {&kResizeRowsPortable, nullptr, nullptr, &kResizeRowsAVX2, &kResizeRowsAVX512};
  return tables[v];
}

// Runs body(table) for the table of every vector variant this machine runs.
template <class Body>
void ForEachVectorTable(Body body) {
  for (auto v : testsupport::RunnableVariants()) {
    const ResizeRowKernels* k = Table(v);
    if (!k || k == &kResizeRowsPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    body(k);
  }
}

// Horizontal tables of `taps` taps for n samples over a source row of
// rowBytes; weights of any sign, as the cubic and Lanczos lobes have.
struct Tables {
  std::vector<int32_t> off;
  std::vector<int16_t> wq;
  std::vector<float> wf;
  uint32_t vectorEnd = 0;
};
Tables RandomTables(int taps, uint32_t n, size_t rowBytes, size_t sampleBytes, std::mt19937& rng) {
  Tables t;
  for (size_t i = 0; i < size_t(taps) * n; ++i) {
    t.off.push_back(int32_t(rng() % (rowBytes / sampleBytes) * sampleBytes));
    t.wq.push_back(int16_t(int(rng() % 12000) - 2000));
    t.wf.push_back(float(int(rng() % 12000) - 2000) / 16384.0f);
  }
  t.vectorEnd = n;
  for (size_t i = 0; i < t.off.size(); ++i)
    if (size_t(t.off[i]) + 4 > rowBytes) t.vectorEnd = std::min<uint32_t>(t.vectorEnd, uint32_t(i % n));
  return t;
}

TEST(ResizeRowsVariants, HorizontalRowsMatchThePortableRows) {
  std::mt19937 rng(17);
  ForEachVectorTable([&](const ResizeRowKernels* k) {
    for (int taps : {1, 2, 3, 4, 6, 9})
      for (uint32_t n = 0; n <= 70; n += 1 + n / 8) {
        const std::vector<uint8_t> src = testsupport::RandomBytes(96, n + 3);
        const Tables t8 = RandomTables(taps, n, src.size(), 1, rng), t16 = RandomTables(taps, n, src.size(), 2, rng);
        std::vector<int16_t> want8(n + 8, 0x55), got8 = want8;
        kResizeRowsPortable.h8(src.data(), t8.off.data(), t8.wq.data(), taps, n, t8.vectorEnd, want8.data());
        k->h8(src.data(), t8.off.data(), t8.wq.data(), taps, n, t8.vectorEnd, got8.data());
        ASSERT_EQ(want8, got8) << "h8, taps " << taps << ", n " << n;
        std::vector<float> want16(n + 8, 5.0f), got16 = want16;
        kResizeRowsPortable.h16(src.data(), t16.off.data(), t16.wf.data(), taps, n, t16.vectorEnd, want16.data());
        k->h16(src.data(), t16.off.data(), t16.wf.data(), taps, n, t16.vectorEnd, got16.data());
        ASSERT_EQ(want16, got16) << "h16, taps " << taps << ", n " << n;
      }
  });
}

TEST(ResizeRowsVariants, VerticalRowsMatchThePortableRows) {
  std::mt19937 rng(23);
  ForEachVectorTable([&](const ResizeRowKernels* k) {
    for (int taps : {1, 2, 3, 4, 5, 6, 11})
      for (uint32_t n = 0; n <= 80; n += 1 + n / 8)
        for (bool keepFourth : {false, true}) {
          std::vector<std::vector<int16_t>> rows8(static_cast<size_t>(taps));
          std::vector<std::vector<float>> rows16(static_cast<size_t>(taps));
          std::vector<const int16_t*> p8;
          std::vector<const float*> p16;
          std::vector<int16_t> w8;
          std::vector<float> w16;
          for (int t = 0; t < taps; ++t) {
            // Rows past the ends of the range, so saturation is met both ways.
            for (uint32_t j = 0; j < n; ++j) {
              rows8[size_t(t)].push_back(int16_t(int(rng() % 22000) - 3000));
              rows16[size_t(t)].push_back(float(int(rng() % 90000) - 10000) + 0.25f * float(rng() % 4));
            }
            p8.push_back(rows8[size_t(t)].data());
            p16.push_back(rows16[size_t(t)].data());
            w8.push_back(int16_t(int(rng() % 14000) - 2000));
            w16.push_back(float(int(rng() % 14000) - 2000) / 16384.0f);
          }
          const std::vector<uint8_t> start = testsupport::RandomBytes(n + 16, n);
          std::vector<uint8_t> want8(start), got8(start);
          kResizeRowsPortable.v8(p8.data(), w8.data(), taps, n, keepFourth, want8.data());
          k->v8(p8.data(), w8.data(), taps, n, keepFourth, got8.data());
          ASSERT_EQ(want8, got8) << "v8, taps " << taps << ", n " << n << ", keepFourth " << keepFourth;
          std::vector<uint16_t> want16(start.begin(), start.end()), got16 = want16;
          kResizeRowsPortable.v16(p16.data(), w16.data(), taps, n, keepFourth, want16.data());
          k->v16(p16.data(), w16.data(), taps, n, keepFourth, got16.data());
          ASSERT_EQ(want16, got16) << "v16, taps " << taps << ", n " << n << ", keepFourth " << keepFourth;
        }
  });
}

TEST(ResizeRowsVariants, WindowAndNearestRowsMatchThePortableRows) {
  std::mt19937 rng(29);
  ForEachVectorTable([&](const ResizeRowKernels* k) {
    for (uint32_t n = 0; n <= 70; n += 1 + n / 8) {
      const std::vector<uint8_t> src = testsupport::RandomBytes(64, n + 5);
      std::vector<int32_t> win, w01, w23, off, off4;
      for (uint32_t j = 0; j < n; ++j) {
        win.push_back(int32_t(rng() % 61));  // four bytes inside the row
        w01.push_back(int32_t(rng()));
        w23.push_back(int32_t(rng() % 20000));
        off.push_back(int32_t(rng() % 64));
        off4.push_back(int32_t(rng() % 16) * 4);
      }
      std::vector<int16_t> want(n + 8, 3), got = want;
      kResizeRowsPortable.h8win(src.data(), win.data(), w01.data(), w23.data(), n, want.data());
      k->h8win(src.data(), win.data(), w01.data(), w23.data(), n, got.data());
      ASSERT_EQ(want, got) << "h8win, n " << n;
      for (int width : {2, 4}) {
        std::vector<int32_t> win16;
        std::vector<float> wf;
        for (uint32_t j = 0; j < n; ++j) win16.push_back(int32_t(rng() % uint32_t(33 - width)) * 2);
        for (uint32_t i = 0; i < uint32_t(width) * n; ++i) wf.push_back(float(int(rng() % 12000) - 2000) / 16384.0f);
        std::vector<float> fWant(n + 8, 2.0f), fGot = fWant;
        kResizeRowsPortable.h16win(src.data(), win16.data(), wf.data(), width, n, fWant.data());
        k->h16win(src.data(), win16.data(), wf.data(), width, n, fGot.data());
        ASSERT_EQ(fWant, fGot) << "h16win, width " << width << ", n " << n;
      }
      uint32_t vectorEnd = n;
      for (uint32_t j = 0; j < n; ++j)
        if (off[j] + 4 > 64) vectorEnd = std::min(vectorEnd, j);
      std::vector<uint8_t> nnWant = testsupport::RandomBytes(4 * n + 8, n), nnGot = nnWant;
      kResizeRowsPortable.nn8(src.data(), off.data(), n, vectorEnd, nnWant.data());
      k->nn8(src.data(), off.data(), n, vectorEnd, nnGot.data());
      ASSERT_EQ(nnWant, nnGot) << "nn8, n " << n;
      std::vector<int32_t> off16;
      uint32_t vectorEnd16 = n;
      for (uint32_t j = 0; j < n; ++j) {
        off16.push_back(off[j] / 2 * 2);
        if (off16[j] + 4 > 64) vectorEnd16 = std::min(vectorEnd16, j);
      }
      kResizeRowsPortable.nn16(src.data(), off16.data(), n, vectorEnd16, nnWant.data());
      k->nn16(src.data(), off16.data(), n, vectorEnd16, nnGot.data());
      ASSERT_EQ(nnWant, nnGot) << "nn16, n " << n;
      for (int taps : {2, 3, 4, 6}) {
        const uint32_t blocks = n / 8;
        std::vector<int32_t> pixOff, pairs;
        for (uint32_t i = 0; i < uint32_t(taps) * n; ++i) pixOff.push_back(int32_t(rng() % 16) * 4);
        for (uint32_t i = 0; i < blocks * uint32_t((taps + 1) / 2) * 32; ++i) pairs.push_back(int32_t(rng() % 9000));
        for (int channels : {3, 4}) {
          // Three-sample rows may write two samples past the last block.
          std::vector<int16_t> pxWant(size_t(8 * channels) * blocks + 8, 1), pxGot = pxWant;
          std::vector<int32_t> windows(size_t(blocks + 1) * uint32_t(taps) * kPixelWindowInts);
          PixelWindows(pixOff.data(), n, taps, channels, blocks, src.size(), windows.data());
          kResizeRowsPortable.h8px4(src.data(), pixOff.data(), n, pairs.data(), windows.data(), taps, channels, blocks,
                                    pxWant.data());
          k->h8px4(src.data(), pixOff.data(), n, pairs.data(), windows.data(), taps, channels, blocks, pxGot.data());
          pxWant.resize(size_t(8 * channels) * blocks);
          pxGot.resize(pxWant.size());
          ASSERT_EQ(pxWant, pxGot) << "h8px4, channels " << channels << ", taps " << taps << ", blocks " << blocks;
        }
      }
      kResizeRowsPortable.nn8x4keep(src.data(), off4.data(), n, nnWant.data());
      k->nn8x4keep(src.data(), off4.data(), n, nnGot.data());
      ASSERT_EQ(nnWant, nnGot) << "nn8x4keep, n " << n;
    }
  });
}

// Tables as a resize builds them: each tap's pixel rising along the row, at
// steps of a reduction, a copy and an enlargement, so that the vector rows
// that fetch a step's pixels from one window of the row meet windows that
// fit, windows too wide, and the row's last bytes; rows are allocated to the
// byte, so a read past them would fall outside the buffer.
TEST(ResizeRowsVariants, RisingPixelTablesMatchThePortableRows) {
  std::mt19937 rng(31);
  ForEachVectorTable([&](const ResizeRowKernels* k) {
    for (double step : {0.37, 0.5, 1.0, 1.5, 2.0, 3.0, 4.5, 9.0})
      for (uint32_t pixels : {8u, 16u, 40u, 67u}) {
        const int32_t width = int32_t(double(pixels) * step) + 3;
        auto pixel = [&](uint32_t p, int k) { return std::clamp(int32_t(double(p) * step) + k - 1, 0, width - 1); };
        for (int channels : {1, 2, 3, 4}) {
          const size_t rowBytes = size_t(width) * size_t(channels);
          const std::vector<uint8_t> src = testsupport::RandomBytes(rowBytes, uint32_t(rowBytes));
          if (channels == 1) {
            // Four-byte windows of one-byte samples, the last ones at the row's end.
            std::vector<int32_t> win, w01, w23;
            for (uint32_t p = 0; p < pixels; ++p) {
              win.push_back(std::min(pixel(p, 0), width - 4));
              w01.push_back(int32_t(rng()));
              w23.push_back(int32_t(rng()));
            }
            std::vector<int16_t> want(pixels + 8, 3), got = want;
            kResizeRowsPortable.h8win(src.data(), win.data(), w01.data(), w23.data(), pixels, want.data());
            k->h8win(src.data(), win.data(), w01.data(), w23.data(), pixels, got.data());
            ASSERT_EQ(want, got) << "h8win, step " << step << ", pixels " << pixels;
            continue;
          }
          if (channels == 2) {
            std::vector<int32_t> off;
            uint32_t vectorEnd = pixels;
            for (uint32_t p = 0; p < pixels; ++p) {
              off.push_back(pixel(p, 1) * 2);
              if (size_t(off[p]) + 4 > rowBytes) vectorEnd = std::min(vectorEnd, p);
            }
            std::vector<uint8_t> want = testsupport::RandomBytes(2 * pixels, pixels), got = want;
            kResizeRowsPortable.nn16(src.data(), off.data(), pixels, vectorEnd, want.data());
            k->nn16(src.data(), off.data(), pixels, vectorEnd, got.data());
            ASSERT_EQ(want, got) << "nn16, step " << step << ", pixels " << pixels;
            continue;
          }
          for (int taps : {2, 3, 4, 6}) {
            std::vector<int32_t> pixOff(size_t(taps) * pixels), pairs;
            uint32_t blocks = pixels / 8;
            for (int t = 0; t < taps; ++t)
              for (uint32_t p = 0; p < pixels; ++p) {
                const int32_t at = pixel(p, t) * channels;
                pixOff[size_t(t) * pixels + p] = at;
                if (size_t(at) + 4 > rowBytes) blocks = std::min(blocks, p / 8);
              }
            for (uint32_t i = 0; i < blocks * uint32_t((taps + 1) / 2) * 32; ++i)
              pairs.push_back(int32_t(rng() % 9000) | int32_t(rng() % 9000) << 16);
            std::vector<int16_t> want(size_t(8 * channels) * blocks + 8, 1), got = want;
            std::vector<int32_t> windows(size_t(blocks + 1) * uint32_t(taps) * kPixelWindowInts);
            PixelWindows(pixOff.data(), pixels, taps, channels, blocks, rowBytes, windows.data());
            kResizeRowsPortable.h8px4(src.data(), pixOff.data(), pixels, pairs.data(), windows.data(), taps, channels,
                                      blocks, want.data());
            k->h8px4(src.data(), pixOff.data(), pixels, pairs.data(), windows.data(), taps, channels, blocks,
                     got.data());
            want.resize(size_t(8 * channels) * blocks);
            got.resize(want.size());
            ASSERT_EQ(want, got) << "h8px4, step " << step << ", channels " << channels << ", taps " << taps;
          }
          if (channels == 4) {
            std::vector<int32_t> off;
            for (uint32_t p = 0; p < pixels; ++p) off.push_back(pixel(p, 1) * 4);
            std::vector<uint8_t> want = testsupport::RandomBytes(4 * pixels, pixels), got = want;
            kResizeRowsPortable.nn8x4keep(src.data(), off.data(), pixels, want.data());
            k->nn8x4keep(src.data(), off.data(), pixels, got.data());
            ASSERT_EQ(want, got) << "nn8x4keep, step " << step << ", pixels " << pixels;
          }
        }
      }
  });
}

}  // namespace
