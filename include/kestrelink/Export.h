#pragma once
// Symbols of the exported classes and port helpers; everything else in the
// library is built with hidden visibility.
#define KESTRELINK_API __attribute__((visibility("default")))
