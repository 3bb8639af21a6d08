#pragma once
// The predictors of lossless frames, 1 to 7, from the left (Ra), upper (Rb)
// and upper-left (Rc) samples.
#include <cstdint>

namespace kestrelink::jpeg {

inline int32_t LosslessPredict(int predictor, int32_t ra, int32_t rb, int32_t rc) {
  switch (predictor) {
    case 1: return ra;
    case 2: return rb;
    case 3: return rc;
    case 4: return ra + rb - rc;
    case 5: return ra + ((rb - rc) >> 1);
    case 6: return rb + ((ra - rc) >> 1);
    default: return (ra + rb) >> 1;
  }
}

}  // namespace kestrelink::jpeg
