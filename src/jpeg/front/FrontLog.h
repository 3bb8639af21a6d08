#pragma once
// Lines of the JPEG front and its back-ends to the debug output, formatted as
// worded.
namespace kestrelink::jpegfront {

void Log(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace kestrelink::jpegfront
