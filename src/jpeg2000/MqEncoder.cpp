#include "jpeg2000/MqEncoder.h"

#include <array>

namespace kestrelink::j2k {
namespace {

struct Row {
  uint16_t qe;
  uint8_t nmps, nlps, swap;
};

// The probability estimation table: Qe, next state after MPS and after LPS,
// and whether an LPS exchanges the sense of the MPS.
constexpr Row kTable[47] = {
    {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},  {0x0521, 5, 29, 0},
    {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},  {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0},
    {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0}, {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1},
    {0x5401, 16, 14, 0}, {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
    {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0}, {0x1C01, 25, 22, 0},
    {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0}, {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0},
    {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0}, {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0},
    {0x02A1, 36, 33, 0}, {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
    {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0}, {0x0005, 45, 42, 0},
    {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0},
};

}  // namespace

namespace {

std::array<MqContext, 94> BuildMqStates() {
  std::array<MqContext, 94> states{};
  for (uint32_t i = 0; i < 94; ++i) states[i] = kTable[i / 2].qe | i << 18;
  return states;
}

std::array<MqContext, 4 * 94> BuildMqTransitions(const std::array<MqContext, 94>& states) {
  std::array<MqContext, 4 * 94> next{};
  for (uint32_t s = 0; s < 47; ++s)
    for (uint32_t mps = 0; mps < 2; ++mps) {
      const Row& r = kTable[s];
      const uint32_t i = 2 * s + mps;
      const uint32_t lpsSense = r.swap ? 1 - mps : mps;
      next[4 * i + 0] = states[i];
      next[4 * i + 1] = states[2 * r.nmps + mps];
      next[4 * i + 2] = next[4 * i + 3] = states[2 * r.nlps + lpsSense];
    }
  return next;
}

}  // namespace

const std::array<MqContext, 94> kMqStates = BuildMqStates();
const std::array<MqContext, 4 * 94> kMqTransitions = BuildMqTransitions(kMqStates);

void ResetMqContexts(MqContext (&contexts)[kContextCount]) {
  for (MqContext& cx : contexts) cx = kMqStates[0];
  contexts[0] = kMqStates[2 * 4];
  contexts[kContextRunLength] = kMqStates[2 * 3];
  contexts[kContextUniform] = kMqStates[2 * 46];
}

// Sets as many low bits of the code register as the interval allows, pushes
// out the last two bytes, and drops a final 255.
size_t MqEncoder::Finish() {
  const uint32_t top = m_c + m_a;
  m_c |= 0xFFFF;
  if (m_c >= top) m_c -= 0x8000;
  m_c <<= m_ct;
  ByteOut();
  m_c <<= m_ct;
  ByteOut();
  if (*m_bp != 0xFF) ++m_bp;
  return size_t(m_bp - m_start);
}

}  // namespace kestrelink::j2k
