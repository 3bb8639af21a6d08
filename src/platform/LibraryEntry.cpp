// What the library does when it is loaded: processor detection and block
// time 0. Unloading does nothing of its own.
#include "platform/CpuFeatures.h"
#include "platform/OpenMP.h"
#include "primitives/CpuDispatch.h"

namespace {

__attribute__((constructor)) void OnLibraryLoad() {
  kestrelink::platform::GetCpuFeatures();
  ippSelectCpu();
  kestrelink::platform::SetBlockTimeZero();
}

}  // namespace
