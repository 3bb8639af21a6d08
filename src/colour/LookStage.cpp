// The look stage with no look loader: nothing is ever loaded, so a look
// frame is answered false as for a missing look.
#include "colour/LookStage.h"

namespace kestrelink::colour {

bool ApplyLookStage(CBayerCorrectorImpl&, void*, uint32_t, uint32_t, uint32_t, bool) { return false; }

void BuildLookTables(CBayerCorrectorImpl&) {}

void ReloadLookIfNewer(CBayerCorrectorImpl&) {}

}  // namespace kestrelink::colour
