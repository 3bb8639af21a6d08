#pragma once
// Thread setup run by the constructors of the exported classes.
namespace kestrelink {

// With a nonzero argument that count is wanted and the store is not read.
// Otherwise OpenMPThread under the current user's Software\Velmor decides,
// when it is a 32-bit number; else 2. The team is changed only when the
// measured size differs. The count is process-wide: the last call wins.
void SetupThreads(int requested = 0);

}  // namespace kestrelink
