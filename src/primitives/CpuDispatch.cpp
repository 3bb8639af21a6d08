#include "primitives/CpuDispatch.h"

#include <algorithm>
#include <atomic>

#include "platform/CpuFeatures.h"

namespace {

constexpr uint64_t kSSE2 = 4;  // the feature word's SSE2 bit

std::atomic<int> g_index{0};
std::atomic<uint64_t> g_mask{0};
std::atomic<int> g_movbe{0};
std::atomic<int> g_variant{-1};  // -1 until the first detection

void Settle(int index, uint64_t mask, int movbe) {
  g_index.store(index, std::memory_order_relaxed);
  g_mask.store(mask, std::memory_order_relaxed);
  g_movbe.store(movbe, std::memory_order_relaxed);
  const auto variant = kestrelink::VariantForCpuIndex(index, mask, kestrelink::MachineVariant());
  g_variant.store(variant, std::memory_order_release);
}

bool Has(uint64_t mask, uint64_t bits) { return (mask & bits) == bits; }

}  // namespace

IppStatus ippSelectCpuFromFeatures(bool detected, uint64_t featureMask, bool osSavesAvx) {
  int index = 0, movbe = 0;
  IppStatus status = ippStsNoErr;
  if (!detected) {
    featureMask &= 7;
  } else if (Has(featureMask, ippCpuFeatureAVX | ippCpuFeatureAVXEnabled) && osSavesAvx) {
    index = 5;
  } else if (Has(featureMask, ippCpuFeatureSSE41)) {
    index = 4;
  } else if (Has(featureMask, ippCpuFeatureMOVBE | ippCpuFeatureSSSE3)) {
    index = 3;
    movbe = 1;
  } else if (Has(featureMask, ippCpuFeatureSSSE3)) {
    index = 2;
  } else if (Has(featureMask, ippCpuFeatureSSE3)) {
    index = 1;
  } else {
    status = ippStsNoCpuExtensions;
  }
  Settle(index, featureMask, movbe);
  return status;
}

IppStatus ippSelectCpu() {
  const auto& f = kestrelink::platform::GetCpuFeatures();
  return ippSelectCpuFromFeatures(f.detected, f.mask, f.osAvx);
}

IppStatus ippForceCpu(int cpuCode) {
  if (cpuCode < ippCpuCodeDetect || cpuCode > ippCpuCodeLast) return ippStsCpuCodeOutOfRange;
  if (cpuCode == ippCpuCodeDetect) return ippSelectCpu();
  if (g_variant.load(std::memory_order_acquire) < 0) ippSelectCpu();  // the feature word first
  const int index = std::min(cpuCode / 16, 5);
  Settle(index, g_mask.load(std::memory_order_relaxed), index == 3 ? 1 : 0);
  return ippStsNoErr;
}

int ippGetCpuIndex() { return g_index.load(std::memory_order_relaxed); }
uint64_t ippGetCpuFeatureMask() { return g_mask.load(std::memory_order_relaxed); }
int ippGetCpuMovbeFlag() { return g_movbe.load(std::memory_order_relaxed); }

namespace kestrelink {

CpuVariant VariantForCpuIndex(int index, uint64_t featureMask, CpuVariant widest) {
  CpuVariant v = kVariantPortable;
  if (index >= 5 && widest >= kVariantAVX2)
    v = widest;
  else if (index >= 2 && Has(featureMask, ippCpuFeatureSSSE3))
    v = kVariantSSSE3;
  else if (Has(featureMask, kSSE2))
    v = kVariantSSE2;
  return std::min(v, widest);
}

CpuVariant DispatchedVariant() {
  int v = g_variant.load(std::memory_order_acquire);
  if (v < 0) {
    ippSelectCpu();
    v = g_variant.load(std::memory_order_acquire);
  }
  return CpuVariant(v);
}

}  // namespace kestrelink
