#include "h264/H264EngineParams.h"

#include <algorithm>
#include <cmath>

namespace UMC {

int EngineColourSpace(int32_t chromaFormatIdc) {
  return chromaFormatIdc == 0 ? X264_CSP_I400 : chromaFormatIdc == 2 ? X264_CSP_I422 : X264_CSP_I420;
}

void FillEngineParams(const H264EncoderParams& p, x264_param_t& e) {
  x264_param_default_preset(&e, "veryfast", nullptr);
  e.i_log_level = X264_LOG_NONE;
  e.i_threads = std::max(p.numThreads, 1);
  e.b_sliced_threads = 0;
  e.i_lookahead_threads = 1;
  e.i_sync_lookahead = 0;
  e.b_deterministic = 1;
  e.i_width = p.info.width;
  e.i_height = p.info.height;
  e.i_csp = EngineColourSpace(p.chromaFormatIdc);
  e.i_bitdepth = 8;
  e.i_level_idc = p.levelIdc;
  const double rate = p.info.frameRate > 0 ? p.info.frameRate : 30.0;
  e.i_fps_num = uint32_t(std::lround(rate * 1000));
  e.i_fps_den = 1000;
  e.i_timebase_num = e.i_fps_den;
  e.i_timebase_den = e.i_fps_num;
  e.b_vfr_input = 0;
  e.i_frame_reference = p.numRefFrames;
  e.i_keyint_max = X264_KEYINT_MAX_INFINITE;
  e.i_keyint_min = 1;
  e.i_scenecut_threshold = 0;
  e.b_intra_refresh = 0;
  e.i_bframe = 0;
  e.b_cabac = p.entropyCodingMode;
  e.i_cabac_init_idc = p.cabacInitIdc;
  e.b_deblocking_filter = p.deblockingFilterIdc != 1;
  e.i_deblocking_filter_alphac0 = std::clamp(p.deblockingFilterAlpha / 2, -6, 6);
  e.i_deblocking_filter_beta = std::clamp(p.deblockingFilterBeta / 2, -6, 6);
  e.i_slice_count = std::max(p.numSlices, 1);
  e.b_interlaced = 0;
  e.analyse.b_transform_8x8 = p.transform8x8Mode != 0;
  e.analyse.i_weighted_pred = p.useWeightedPred ? X264_WEIGHTP_SIMPLE : X264_WEIGHTP_NONE;
  e.analyse.i_me_range = std::max({p.meSearchX, p.meSearchY, 4});
  e.analyse.b_psnr = 0;
  e.analyse.b_ssim = 0;
  e.rc.i_rc_method = X264_RC_CRF;
  e.rc.f_rf_constant = 23;
  e.rc.i_lookahead = 0;
  e.rc.b_mb_tree = 0;
  e.rc.i_aq_mode = X264_AQ_NONE;
  e.rc.i_qp_min = 0;
  e.rc.i_qp_max = 51;
  e.rc.i_qp_step = 51;
  e.rc.i_vbv_max_bitrate = 0;
  e.rc.i_vbv_buffer_size = 0;
  e.b_repeat_headers = 1;
  e.b_annexb = 1;
  e.b_aud = 0;
}

}  // namespace UMC
