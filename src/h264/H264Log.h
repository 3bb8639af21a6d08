#pragma once
// Lines of the H.264 back-ends to the debug output, formatted as worded into
// a buffer of 111 characters.
namespace kestrelink::h264 {

void Log(const char* line);
void Log(const char* format, int value);
void Log(const char* format, int first, int second);

}  // namespace kestrelink::h264
