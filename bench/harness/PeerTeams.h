#pragma once
// Thread settings of the peers that have a pool of their own.
#include "harness/BenchHarness.h"

namespace kestrelink::bench {

#ifdef KESTRELINK_HAVE_OPENCV
// OpenCV's own pool: cv::setNumThreads(n).
Team OpenCvTeam();
#endif

}  // namespace kestrelink::bench
