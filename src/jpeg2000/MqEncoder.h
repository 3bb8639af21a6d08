#pragma once
// The MQ arithmetic coder of the code-block passes: the standard's 47-state
// probability table, byte output with the carry and the bit stuffing after
// a byte of 255, and the closing flush. The interval is renormalised by
// whole shifts up to the next byte boundary rather than one bit at a time.
//
// The coder's registers are a small value with no arrays, so that a pass
// can hold a copy in machine registers; the 19 context states live apart.
// Its steps are always inlined: the code-block coder is built once per
// instruction set, and no unit may call another's copy.
#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrelink::j2k {

inline constexpr int kContextRunLength = 17;
inline constexpr int kContextUniform = 18;
inline constexpr int kContextCount = 19;

// A context holds its whole state in one word, so that coding a symbol
// needs one load of it: Qe in bits 0-15 and, from bit 18, the index of the
// state and sense (2 * state + sense, so the sense of the most probable
// symbol is bit 18).
using MqContext = uint32_t;

// Every state and sense, by index.
extern const std::array<MqContext, 94> kMqStates;

// The word after a symbol, at 4 * index + 2 * (least probable) + (the
// interval was renormalised): the same state for a most probable symbol
// that leaves the interval at 0x8000 or more, the next one otherwise.
extern const std::array<MqContext, 4 * 94> kMqTransitions;

// Contexts start in state 0, except the all-insignificant zero context
// (state 4), the run-length context (state 3) and the uniform context (46).
void ResetMqContexts(MqContext (&contexts)[kContextCount]);

class MqEncoder {
 public:
  // out must hold the byte before it (written as 0) and every byte coded.
  __attribute__((always_inline)) void Start(uint8_t* out) {
    m_a = 0x8000;
    m_c = 0;
    m_ct = 12;
    out[0] = 0;
    m_bp = out;
    m_start = out + 1;
  }

  // The choices between the symbol's two sub-intervals are masks rather
  // than branches: which symbol comes is what the data makes unpredictable
  // (the compiler turns plain selects on it back into jumps).
  __attribute__((always_inline)) void Encode(MqContext* contexts, int context, uint32_t bit) {
    MqContext& cx = contexts[context];
    const MqContext state = cx;
    const uint32_t qe = state & 0xFFFF;
    const uint32_t a = m_a - qe;  // A is at least 0x8000, Qe below it
    const uint32_t lps = bit ^ ((state >> 18) & 1);
    // The code register moves past Qe for a most probable symbol whose
    // interval stays the larger, and for a least probable one whose does not.
    const uint32_t upper = 0u - (lps ^ uint32_t(a >= qe));
    m_c += qe & upper;
    m_a = qe ^ ((a ^ qe) & upper);
    cx = kMqTransitions[(state >> 16) | lps << 1 | ((a >> 15) ^ 1)];
    int shift = __builtin_clz(m_a) - 16;
    if (__builtin_expect(shift >= m_ct, 0)) {
      do {
        m_a <<= m_ct;
        m_c <<= m_ct;
        shift -= m_ct;
        ByteOut();
      } while (shift >= m_ct);
    }
    m_a <<= shift;
    m_c <<= shift;
    m_ct -= shift;
  }

  // Ends the code and answers the number of bytes written.
  size_t Finish();

 private:
  __attribute__((always_inline)) void ByteOut() {
    if (*m_bp == 0xFF) {
      *++m_bp = uint8_t(m_c >> 20);
      m_c &= 0xFFFFF;
      m_ct = 7;
      return;
    }
    if (m_c >= 0x8000000) {
      ++*m_bp;  // the carry
      if (*m_bp == 0xFF) {
        m_c &= 0x7FFFFFF;
        *++m_bp = uint8_t(m_c >> 20);
        m_c &= 0xFFFFF;
        m_ct = 7;
        return;
      }
    }
    *++m_bp = uint8_t(m_c >> 19);
    m_c &= 0x7FFFF;
    m_ct = 8;
  }

  uint32_t m_a = 0, m_c = 0;
  int m_ct = 0;
  uint8_t* m_bp = nullptr;
  uint8_t* m_start = nullptr;
};

}  // namespace kestrelink::j2k
