#pragma once
// Run-time loading of companion libraries (dlopen), never linked.
#include <string>

namespace kestrelink::platform {

// Full path of libkestrelink.so itself (found with dladdr); empty if it
// can't be told.
std::string SelfPath();

// Directory that holds libkestrelink.so itself (found with dladdr), with a
// trailing '/'; empty if it can't be told.
std::string SelfDirectory();

// Loads a library by path or name as dlopen resolves it; nullptr on failure.
void* LoadLibrary(const char* pathOrName);

// Loads fileName from the directory of libkestrelink.so; nullptr on failure.
void* LoadLibraryBesideSelf(const char* fileName);

// Address of an entry point, or nullptr.
void* LibrarySymbol(void* handle, const char* name);

void FreeLibrary(void* handle);

}  // namespace kestrelink::platform
