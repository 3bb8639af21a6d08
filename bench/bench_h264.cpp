// H.264 through CH264Conversion at full frame size, each against the bare
// engine doing the same job: EncodeImage (planar and mono sources) against
// libx264 driven with the same settings, quantisers and key frames on frames
// already in the stream's chroma format; DecodeImage against libavcodec on
// the same access units plus the same conversion to BGR24. Before the
// benchmarks, the bit rate our rate control reaches over 300 frames is
// printed against its target. The sources are a moving synthetic sequence.
#include <kestrelink/CH264Conversion.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
}

#include "h264/H264EngineParams.h"
#include "h264/H264KeyFrames.h"
#include "h264/H264ParamCheck.h"
#include "h264/H264RateControl.h"
#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "primitives/YCbCrToRgb.h"

namespace kestrelink::bench {
namespace {

constexpr int kSourceFrames = 16;       // the sequence cycles through these
constexpr uint32_t kDecodeFrames = 60;  // one GOP, decoded over and over
constexpr int kGop = 30;
constexpr int kBitRate = 5000000;

struct Planar {
  std::vector<uint8_t> y, u, v;     // 4:2:0, as callers hand it over
  std::vector<uint8_t> u422, v422;  // the same chroma with its rows repeated: what the engine codes
};

// Frame t: a diagonal gradient drifting right, a bright box moving down and
// a fixed low-amplitude texture, with chroma ramps.
Planar MakeFrame(uint32_t w, uint32_t h, uint32_t t) {
  Planar f{std::vector<uint8_t>(size_t(w) * h), std::vector<uint8_t>(size_t(w / 2) * (h / 2)),
           std::vector<uint8_t>(size_t(w / 2) * (h / 2)), {}, {}};
  uint32_t noise = 12345;
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      noise = noise * 1664525u + 1013904223u;
      uint32_t value = 24 + ((x + 6 * t) / 3 + y / 2) % 180 + (noise >> 29);
      const uint32_t top = (t * 9) % (h - 120);
      if (x >= w / 3 && x < w / 3 + 160 && y >= top && y < top + 120) value = 225;
      f.y[size_t(y) * w + x] = uint8_t(value);
    }
  for (uint32_t y = 0; y < h / 2; ++y)
    for (uint32_t x = 0; x < w / 2; ++x) {
      f.u[size_t(y) * (w / 2) + x] = uint8_t(80 + (x / 4 + t) % 96);
      f.v[size_t(y) * (w / 2) + x] = uint8_t(80 + (y / 4 + 2 * t) % 96);
    }
  for (uint32_t y = 0; y < h; ++y) {
    f.u422.insert(f.u422.end(), f.u.begin() + (y / 2) * (w / 2), f.u.begin() + (y / 2 + 1) * (w / 2));
    f.v422.insert(f.v422.end(), f.v.begin() + (y / 2) * (w / 2), f.v.begin() + (y / 2 + 1) * (w / 2));
  }
  return f;
}

struct Sequence {
  uint32_t w = BenchSettings().width & ~15u, h = BenchSettings().height & ~1u;
  std::vector<Planar> frames;
  std::vector<uint8_t> record;
  Sequence() : record(size_t(w) * h * 2 + 16) {
    for (int t = 0; t < kSourceFrames; ++t) frames.push_back(MakeFrame(w, h, uint32_t(t)));
  }
};

Sequence& Frames() {
  static Sequence sequence;
  return sequence;
}

uint32_t RecordSize(const std::vector<uint8_t>& record) {
  return uint32_t(record[0]) | uint32_t(record[1]) << 8 | uint32_t(record[2]) << 16 | uint32_t(record[3]) << 24;
}

// Our encoder, one frame a call, cycling through the sequence.
struct OurEncoder {
  CH264Conversion codec;
  bool mono;
  int next = 0;
  explicit OurEncoder(bool monoSource) : mono(monoSource) {
    codec.Initialize(true, Frames().w, Frames().h, mono ? H264_SOURCE_MONO : H264_SOURCE_YUV_PLANAR, kGop, kBitRate, 8, 0);
  }
  bool Encode() {
    Planar& f = Frames().frames[size_t(next++ % kSourceFrames)];
    return codec.EncodeImage(Frames().record.data(), f.y.data(), f.u.data(), f.v.data());
  }
};

// libx264 alone with the settings, key frames and quantisers our encoder gives it.
struct BareEncoder {
  UMC::H264EncoderParams params;
  UMC::H264RateControl rate;
  UMC::H264KeyFrames keys;
  x264_t* engine = nullptr;
  int next = 0;
  explicit BareEncoder(bool mono) {
    params.info.width = int32_t(Frames().w);
    params.info.height = int32_t(Frames().h);
    params.info.bitRate = kBitRate;
    params.chromaFormatIdc = mono ? 0 : 2;
    params.numRefFrames = 0;
    params.keyFrameInterval = kGop;
    params.idrInterval = 1;
    params.numThreads = 1;
    UMC::CheckEncoderParams(params);
    UMC::RateControlSetup setup;
    setup.luma = int64_t(Frames().w) * Frames().h;
    setup.bitRate = kBitRate;
    setup.chromaFormatIdc = params.chromaFormatIdc;
    rate.Init(setup);
    keys.Init(kGop, 1);
    x264_param_t engineParams;
    UMC::FillEngineParams(params, engineParams);
    engine = x264_encoder_open(&engineParams);
  }
  ~BareEncoder() {
    if (engine) x264_encoder_close(engine);
  }
  bool Encode() {
    if (!engine) return false;
    Planar& f = Frames().frames[size_t(next++ % kSourceFrames)];
    const UMC::KeyFrameKind kind = keys.Next();
    const UMC::FrameType type = kind == UMC::KeyFrameKind::Inter ? UMC::P_PICTURE : UMC::I_PICTURE;
    x264_picture_t picture, coded;
    x264_picture_init(&picture);
    picture.img.i_csp = UMC::EngineColourSpace(params.chromaFormatIdc);
    picture.img.i_plane = params.chromaFormatIdc == 0 ? 1 : 3;
    picture.img.plane[0] = f.y.data();
    picture.img.plane[1] = f.u422.data();
    picture.img.plane[2] = f.v422.data();
    picture.img.i_stride[0] = int(Frames().w);
    picture.img.i_stride[1] = picture.img.i_stride[2] = int(Frames().w / 2);
    picture.i_type = kind == UMC::KeyFrameKind::Inter ? X264_TYPE_P : X264_TYPE_IDR;
    picture.i_qpplus1 = rate.GetQP(type) + 1;
    x264_nal_t* nals = nullptr;
    int count = 0;
    const int bytes = x264_encoder_encode(engine, &nals, &count, &picture, &coded);
    if (bytes < 0) return false;
    rate.PostFrame(type, int64_t(bytes) * 8);
    return true;
  }
};

// A GOP of records from our encoder, for both decoders.
struct Records {
  std::vector<std::vector<uint8_t>> records;
  explicit Records(bool mono) {
    OurEncoder encoder(mono);
    encoder.codec.Initialize(true, Frames().w, Frames().h, mono ? H264_SOURCE_MONO : H264_SOURCE_YUV_PLANAR,
                             int(kDecodeFrames), kBitRate, 8, 0);
    for (uint32_t i = 0; i < kDecodeFrames; ++i) {
      encoder.Encode();
      std::vector<uint8_t>& r = Frames().record;
      records.emplace_back(r.begin(), r.begin() + RecordSize(r) + 8);
    }
  }
};

Records& RecordsOf(bool mono) {
  static Records planar(false), monochrome(true);
  return mono ? monochrome : planar;
}

struct OurDecoder {
  CH264Conversion codec;
  Records& records;
  std::vector<uint8_t> image;
  uint32_t index = 0;
  explicit OurDecoder(bool mono)
      : records(RecordsOf(mono)), image(size_t((Frames().h + 15) & ~15u) * Frames().w * 3) {
    codec.Initialize(false, Frames().w, Frames().h, mono ? H264_SOURCE_MONO : H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0);
  }
  bool Decode() {
    const uint32_t i = index++ % kDecodeFrames;
    return codec.DecodeImage(i + 1, records.records[i].data(), image.data());
  }
};

// libavcodec on the same access units, then the same 4:2:0 kernel to BGR24 in bands of rows.
struct BareDecoder {
  Records& records;
  AVCodecContext* context = nullptr;
  AVFrame* frame = av_frame_alloc();
  AVPacket* packet = av_packet_alloc();
  std::vector<uint8_t> image, padded, neutral;
  uint32_t index = 0;
  explicit BareDecoder(bool mono)
      : records(RecordsOf(mono)), image(size_t(Frames().h) * Frames().w * 3), neutral(Frames().w, 128) {
    av_log_set_level(AV_LOG_QUIET);
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_H264);
    context = avcodec_alloc_context3(codec);
    context->thread_count = 1;
    avcodec_open2(context, codec, nullptr);
  }
  ~BareDecoder() {
    avcodec_free_context(&context);
    av_frame_free(&frame);
    av_packet_free(&packet);
  }
  bool Decode(int threads) {
    const uint32_t i = index++ % kDecodeFrames;
    if (i == 0) avcodec_flush_buffers(context);
    const std::vector<uint8_t>& r = records.records[i];
    padded.assign(r.begin() + 8, r.end() - 8);
    padded.resize(padded.size() + AV_INPUT_BUFFER_PADDING_SIZE, 0);
    packet->data = padded.data();
    packet->size = int(RecordSize(r) - 8);
    if (avcodec_send_packet(context, packet) < 0 || avcodec_receive_frame(context, frame) < 0) return false;
    const bool grey = !frame->data[1];
    const int rowsPerChroma = frame->format == AV_PIX_FMT_YUV422P ? 2 : 1;
    const int w = frame->width;
    bool ok = true;
    SplitRows(uint32_t(frame->height) / 2, threads, [&](uint32_t first, uint32_t pairs) {
      const Ipp8u* src[3] = {frame->data[0] + size_t(2 * first) * frame->linesize[0],
                             grey ? neutral.data() : frame->data[1] + size_t(first) * rowsPerChroma * frame->linesize[1],
                             grey ? neutral.data() : frame->data[2] + size_t(first) * rowsPerChroma * frame->linesize[2]};
      const int steps[3] = {frame->linesize[0], grey ? 0 : rowsPerChroma * frame->linesize[1],
                            grey ? 0 : rowsPerChroma * frame->linesize[2]};
      if (ippiYCbCr420ToBGR_8u_P3C3R(src, steps, image.data() + size_t(2 * first) * w * 3, w * 3,
                                     IppiSize{w, int(2 * pairs)}) != 0)
        ok = false;
    });
    av_frame_unref(frame);
    return ok;
  }
};

// The bit rate our rate control reaches: 300 frames at 30 a second against the target, after the first GOP.
void PrintBitRate() {
  const int frames = BenchSettings().quick ? 60 : 300;
  for (bool mono : {false, true}) {
    OurEncoder encoder(mono);
    uint64_t firstGop = 0, rest = 0;
    for (int i = 0; i < frames; ++i) {
      encoder.Encode();
      (i < kGop ? firstGop : rest) += uint64_t(RecordSize(Frames().record) - 8) * 8;
    }
    const double after = double(rest) * 30.0 / (frames - kGop), all = double(firstGop + rest) * 30.0 / frames;
    std::printf("bit rate, %s %ux%u, %d frames, target %d bit/s: %.0f bit/s over all (%.1f%%), %.0f bit/s after the first GOP (%.1f%%)\n",
                mono ? "mono" : "planar", Frames().w, Frames().h, frames, kBitRate, all, 100.0 * (all - kBitRate) / kBitRate,
                after, 100.0 * (after - kBitRate) / kBitRate);
  }
}

}  // namespace

void RegisterCases() {
  PrintBitRate();
  const size_t pixels = size_t(Frames().w) * Frames().h;
  for (bool mono : {false, true}) {
    const std::string encode = mono ? "EncodeImage:mono" : "EncodeImage:planar";
    const size_t read = mono ? pixels : pixels * 3 / 2;
    auto* ours = new OurEncoder(mono);
    auto* bare = new BareEncoder(mono);
    Register(Case{encode, kOurs, read, 0, LibraryTeam(), [ours](int) { return ours->Encode(); }});
    Register(Case{encode, "libx264", read, 0, SplitRowsTeam(), [bare](int) { return bare->Encode(); }});
    const std::string decode = mono ? "DecodeImage:mono" : "DecodeImage:planar";
    auto* ourDecoder = new OurDecoder(mono);
    auto* bareDecoder = new BareDecoder(mono);
    Register(Case{decode, kOurs, 0, pixels * 3, LibraryTeam(), [ourDecoder](int) { return ourDecoder->Decode(); }});
    Register(Case{decode, "libavcodec+kernel", 0, pixels * 3, SplitRowsTeam(),
                  [bareDecoder](int threads) { return bareDecoder->Decode(threads); }});
  }
  RegisterMemcpy(3);
}

}  // namespace kestrelink::bench
