// The verb table; a new verb is one row here and one file with its run and usage.
#include "AnalysisVerbs.h"
#include "CompressVerbs.h"
#include "DemosaicVerb.h"
#include "GeometryVerbs.h"
#include "Jpeg2kVerb.h"
#include "JpegVerb.h"
#include "LookVerb.h"
#include "MirrorRotateVerbs.h"
#include "MotionVerb.h"
#include "ResizeVerb.h"
#include "Verbs.h"
#include "WaveletVerb.h"

namespace kestrelink::tool {

namespace {

constexpr Verb kVerbs[] = {
    {"average", "average a run of raw frames, whole or as a rolling span", RunAverage, PrintAverageUsage},
    {"combine", "put two raw frames into one, side by side or one above the other", RunCombine,
     PrintCombineUsage},
    {"compress", "compress a file without loss (Huffman, LZSS or RLE stream)", RunCompress, PrintCompressUsage},
    {"convert", "convert one raw frame file to another layout (raw bytes or PNG)", RunConvert, PrintConvertUsage},
    {"decompress", "decode a Huffman, LZSS or RLE stream back into the raw file", RunDecompress,
     PrintDecompressUsage},
    {"demo", "write example conversions of a built-in synthetic camera frame as PNG files", RunDemo,
     PrintDemoUsage},
    {"demosaic", "demosaic a raw Bayer frame to colour, with a colour balance or correction tables", RunDemosaic,
     PrintDemosaicUsage},
    {"h264", "encode planar frames to H.264 records, or decode records to pictures", RunH264, PrintH264Usage},
    {"help", "show the overall help, or one command's help", RunHelp, PrintHelpUsage},
    {"j2k", "encode an 8-bit frame to a lossless JP2 file, and to a packet record", RunJpeg2k, PrintJpeg2kUsage},
    {"jpeg", "encode a raw frame to JPEG, decode JPEG to PNG, or describe a JPEG file", RunJpeg, PrintJpegUsage},
    {"merge", "lay one mono frame over another: offset, turned, mirrored, blended or as a ratio, in colour",
     RunMerge, PrintMergeUsage},
    {"look", "apply a look file (3D or 1D colour table) to a BGR24, BGR48 or BGRx frame", RunLook,
     PrintLookUsage},
    {"mirror", "mirror a frame about the horizontal or vertical axis, or both", RunMirror, PrintMirrorUsage},
    {"motion", "find the change between two grey frames: difference, threshold, opening, counts", RunMotion,
     PrintMotionUsage},
    {"resize", "scale a raw frame to another size (nearest, linear, cubic, Lanczos or area average)", RunResize,
     PrintResizeUsage},
    {"rotate", "turn a frame by any angle, right angles as exact copies", RunRotate, PrintRotateUsage},
    {"spectrum", "sum the magnitude spectra of a band of rows of a 16-bit frame, as CSV or a plot", RunSpectrum,
     PrintSpectrumUsage},
    {"wavelet", "encode a grey frame with the block wavelet codec, or decode it back", RunWavelet,
     PrintWaveletUsage},
};

}  // namespace

std::span<const Verb> AllVerbs() { return kVerbs; }

const Verb* FindVerb(std::string_view name) {
  for (const Verb& verb : kVerbs)
    if (verb.name == name) return &verb;
  return nullptr;
}

}  // namespace kestrelink::tool
