// The depth-change row kernels as plain loops for the compiler to vectorise
// for the including unit's instruction set. Include once, inside that unit's
// own namespace, after <cstring>; defines `const DepthRowKernels kTable`.
namespace {

using kestrelink::rows::DepthChange;
using kestrelink::rows::DepthRowKernels;

inline uint16_t Change(uint32_t s, uint32_t n, bool right, uint32_t mask) {
  return uint16_t(mask & (right ? s >> n : s << n));
}

// The loops run with the count below 32; a larger one has made the shift 0.
inline DepthChange Effective(const DepthChange& c) { return c.n < 32 ? c : DepthChange{0, c.right, 0}; }

void Words(const uint8_t* src, uint8_t* dst, size_t count, const DepthChange& change) {
  const DepthChange c = Effective(change);
  for (size_t i = 0; i < count; ++i) {
    uint16_t s;
    std::memcpy(&s, src + 2 * i, 2);
    const uint16_t v = Change(s, c.n, c.right, c.mask);
    std::memcpy(dst + 2 * i, &v, 2);
  }
}

void Words3Of4(const uint8_t* src, uint8_t* dst, size_t pixels, const DepthChange& change) {
  const DepthChange c = Effective(change);
  for (size_t i = 0; i < pixels; ++i) {
    uint16_t s[3], v[3];
    std::memcpy(s, src + 8 * i, 6);
    for (int k = 0; k < 3; ++k) v[k] = Change(s[k], c.n, c.right, c.mask);
    std::memcpy(dst + 8 * i, v, 6);
  }
}

const DepthRowKernels kTable = {Words, Words3Of4};

}  // namespace
