// Portable mirror rows: one pixel at a time, a byte at a time inside it.
#include "primitives/MirrorRows.h"

namespace kestrelink::mirror {

const MirrorRowKernels kMirrorRowsPortable = {ReversePortable<1>, ReversePortable<2>, ReversePortable<3>,
                                              ReversePortable<4>, ReversePortable<6>, ReversePortable<8>};

}  // namespace kestrelink::mirror
