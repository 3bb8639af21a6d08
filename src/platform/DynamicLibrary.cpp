// Companion libraries through dlopen; nothing here is linked at build time.
#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include <cstdlib>

namespace kestrelink::platform {

std::string SelfPath() {
  Dl_info info{};
  // Any function of this library names the file it was loaded from.
  if (::dladdr(reinterpret_cast<void*>(&SelfPath), &info) == 0 || info.dli_fname == nullptr) return {};
  std::string path = info.dli_fname;
  // The name may be relative to the directory the process started in.
  if (char* resolved = ::realpath(info.dli_fname, nullptr)) {
    path = resolved;
    std::free(resolved);
  }
  return path;
}

std::string SelfDirectory() {
  const std::string path = SelfPath();
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {};
  return path.substr(0, slash + 1);
}

void* LoadLibrary(const char* pathOrName) {
  // dlopen(nullptr) would hand back the main program.
  if (pathOrName == nullptr || *pathOrName == '\0') return nullptr;
  return ::dlopen(pathOrName, RTLD_NOW | RTLD_LOCAL);
}

void* LoadLibraryBesideSelf(const char* fileName) {
  if (fileName == nullptr || *fileName == '\0') return nullptr;
  const std::string directory = SelfDirectory();
  // Without our own directory a bare name would fall back to the system search.
  if (directory.empty()) return nullptr;
  return LoadLibrary((directory + fileName).c_str());
}

void* LibrarySymbol(void* handle, const char* name) {
  // A null handle would mean RTLD_DEFAULT, a search of every loaded library.
  if (handle == nullptr || name == nullptr) return nullptr;
  return ::dlsym(handle, name);
}

void FreeLibrary(void* handle) {
  if (handle != nullptr) ::dlclose(handle);
}

}  // namespace kestrelink::platform
