#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace kestrelink::bench {

#ifdef KESTRELINK_HAVE_OPENCV
Team OpenCvTeam() {
  return {"cv::setNumThreads(n), OpenCV's own pool", [](int threads) { cv::setNumThreads(threads); }};
}
#endif

}  // namespace kestrelink::bench
