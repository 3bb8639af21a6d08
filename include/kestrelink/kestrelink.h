#pragma once
// Everything a program that links libkestrelink.so needs.
#include <kestrelink/CH264Conversion.h>
#include <kestrelink/CImageCombine.h>
#include <kestrelink/CJpegConversion.h>
#include <kestrelink/CIppAverageImage.h>
#include <kestrelink/CIppBayerCorrector.h>
#include <kestrelink/CIppImageCompress.h>
#include <kestrelink/CIppImageConverter.h>
#include <kestrelink/CIppImageMerger.h>
#include <kestrelink/CIppImageMirror.h>
#include <kestrelink/CIppMotionDetector.h>
#include <kestrelink/CIppImageRotate.h>
#include <kestrelink/CIppImageWrapper.h>
#include <kestrelink/CIppImageResize.h>
#include <kestrelink/CIppWavletCompression.h>
#include <kestrelink/DebugOutput.h>
