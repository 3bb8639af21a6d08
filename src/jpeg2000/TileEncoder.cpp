#include "jpeg2000/TileEncoder.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <omp.h>

#include "jpeg2000/CodeBlockCoder.h"
#include "jpeg2000/Codestream.h"
#include "jpeg2000/TagTree.h"
#include "jpeg2000/Wavelet53.h"
#include "platform/OpenMP.h"

namespace kestrelink::j2k {
namespace {

struct Band {
  BandOrientation orientation;
  uint32_t x0, y0, width, height;  // place in the transformed plane
  uint32_t blocksX, blocksY;
  uint32_t firstBlock;             // index into the block list
  uint32_t maxPlanes;              // guard bits + exponent - 1
};

struct Block {
  const int32_t* samples;
  uint32_t width, height;
  BandOrientation orientation;
  CodedBlock coded;
  int arena;
  size_t offset;
};

struct Resolution {
  uint32_t component;
  std::vector<Band> bands;
};

uint32_t DivideUp(uint32_t a, uint32_t b) { return a == 0 ? 0 : (a - 1) / b + 1; }

// The sub-bands of every resolution, in the order the packets go out, and
// their code-blocks in raster order within each band.
void Layout(const TileSettings& t, const int32_t* const* planes, std::vector<Resolution>& packets,
            std::vector<Block>& blocks) {
  const uint32_t bw = 1u << std::min(t.blockWidthExp, 6u), bh = 1u << std::min(t.blockHeightExp, 6u);
  auto addBand = [&](Resolution& res, BandOrientation o, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h,
                     uint32_t exponent) {
    Band b{o, x0, y0, w, h, DivideUp(w, bw), DivideUp(h, bh), uint32_t(blocks.size()), kGuardBits + exponent - 1};
    const int32_t* plane = planes[res.component];
    for (uint32_t by = 0; by < b.blocksY; ++by)
      for (uint32_t bx = 0; bx < b.blocksX; ++bx) {
        const uint32_t x = bx * bw, y = by * bh;
        blocks.push_back(Block{plane + size_t(y0 + y) * t.width + x0 + x, std::min(bw, w - x), std::min(bh, h - y), o,
                               CodedBlock{}, 0, 0});
      }
    res.bands.push_back(b);
  };
  for (uint32_t r = 0; r <= t.levels; ++r)
    for (uint32_t c = 0; c < t.components; ++c) {
      Resolution res{c, {}};
      if (r == 0) {
        addBand(res, kBandLL, 0, 0, LevelSize(t.width, t.levels), LevelSize(t.height, t.levels), kExponentLL);
      } else {
        const uint32_t level = t.levels - r + 1;  // the decomposition level whose high bands this resolution adds
        const uint32_t w = LevelSize(t.width, level - 1), h = LevelSize(t.height, level - 1);
        const uint32_t lw = (w + 1) / 2, lh = (h + 1) / 2;
        addBand(res, kBandHL, lw, 0, w - lw, lh, kExponentHLLH);
        addBand(res, kBandLH, 0, lh, lw, h - lh, kExponentHLLH);
        addBand(res, kBandHH, lw, lh, w - lw, h - lh, kExponentHH);
      }
      packets.push_back(std::move(res));
    }
}

// The bytes of one thread's blocks, one after another; grown by doubling,
// never cleared.
struct Arena {
  std::unique_ptr<uint8_t[]> bytes;
  size_t size = 0;
  void Reserve(size_t needed, size_t used) {
    if (needed <= size) return;
    const size_t grown = std::max(needed, 2 * size);
    std::unique_ptr<uint8_t[]> larger(new uint8_t[grown]);
    if (used) std::memcpy(larger.get(), bytes.get(), used);
    bytes = std::move(larger);
    size = grown;
  }
};

// Codes every block over the team; each thread appends its blocks' bytes to
// an arena of its own.
void CodeBlocks(std::vector<Block>& blocks, std::vector<Arena>& arenas, size_t stride) {
  const int64_t count = int64_t(blocks.size());
  arenas.resize(size_t(std::clamp(platform::TeamSize(), 1, platform::kMaxTeamSize)));
#pragma omp parallel num_threads(platform::TeamSize()) if (count > 16)
  {
    const int id = omp_get_thread_num();
    Arena& arena = arenas[size_t(id)];
    size_t used = 0;
    auto coder = std::make_unique<CodeBlockCoder>();
#pragma omp for schedule(dynamic, 4)
    for (int64_t i = 0; i < count; ++i) {
      Block& b = blocks[size_t(i)];
      arena.Reserve(used + CodeBlockCoder::OutputBound(size_t(b.width) * b.height), used);
      b.coded = coder->Encode(b.samples, stride, b.width, b.height, b.orientation, arena.bytes.get() + used);
      b.arena = id;
      b.offset = used + 1;
      used += b.coded.bytes + 1;
    }
  }
}

void PutPassCount(PacketBits& bits, uint32_t passes) {
  if (passes == 1) bits.Put(0);
  else if (passes == 2) bits.PutBits(0b10, 2);
  else if (passes <= 5) bits.PutBits((0b11u << 2) | (passes - 3), 4);
  else if (passes <= 36) bits.PutBits((0b1111u << 5) | (passes - 6), 9);
  else bits.PutBits((0x1FFu << 7) | (passes - 37), 16);
}

uint32_t FloorLog2(uint32_t v) { return 31 - uint32_t(__builtin_clz(v)); }
uint32_t BitLength(size_t v) { return v == 0 ? 0 : 64 - uint32_t(__builtin_clzll(v)); }

void WritePacket(const Resolution& res, const std::vector<Block>& blocks, const std::vector<Arena>& arenas,
                 ByteStream& out) {
  PacketBits bits(out);
  bits.Put(1);  // not empty
  TagTree inclusion, zeroPlanes;
  for (const Band& band : res.bands) {
    const uint32_t n = band.blocksX * band.blocksY;
    if (n == 0) continue;
    inclusion.Reset(band.blocksX, band.blocksY);
    zeroPlanes.Reset(band.blocksX, band.blocksY);
    for (uint32_t i = 0; i < n; ++i) {
      const CodedBlock& cb = blocks[band.firstBlock + i].coded;
      inclusion.SetValue(i, cb.passes > 0 ? 0 : 1);
      zeroPlanes.SetValue(i, int32_t(band.maxPlanes > cb.planes ? band.maxPlanes - cb.planes : 0));
    }
    for (uint32_t i = 0; i < n; ++i) {
      const CodedBlock& cb = blocks[band.firstBlock + i].coded;
      inclusion.Encode(i, 1, bits);
      if (cb.passes == 0) continue;
      zeroPlanes.Encode(i, INT32_MAX, bits);
      PutPassCount(bits, cb.passes);
      // Length indicator: 3 bits plus the log of the passes, raised as needed.
      uint32_t lengthBits = 3 + FloorLog2(cb.passes);
      const uint32_t needed = BitLength(cb.bytes);
      for (; lengthBits < needed; ++lengthBits) bits.Put(1);
      bits.Put(0);
      bits.PutBits(uint32_t(cb.bytes), lengthBits);
    }
  }
  bits.Finish();
  for (const Band& band : res.bands)
    for (uint32_t i = 0; i < band.blocksX * band.blocksY; ++i) {
      const Block& b = blocks[band.firstBlock + i];
      if (b.coded.bytes) out.PutBytes(arenas[size_t(b.arena)].bytes.get() + b.offset, b.coded.bytes);
    }
}

}  // namespace

void WriteTilePackets(const TileSettings& tile, const int32_t* const* planes, ByteStream& out) {
  std::vector<Resolution> packets;
  std::vector<Block> blocks;
  Layout(tile, planes, packets, blocks);
  std::vector<Arena> arenas;
  CodeBlocks(blocks, arenas, tile.width);
  for (const Resolution& res : packets) WritePacket(res, blocks, arenas, out);
}

}  // namespace kestrelink::j2k
