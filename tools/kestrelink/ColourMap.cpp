#include "ColourMap.h"

#include <kestrelink/CIppImageConverter.h>

#include "ToolError.h"

namespace kestrelink::tool {

void ApplyColourMap(CIppImageConverter& converter, const ColourMapSettings& settings) {
  if (!settings.Any()) return;
  converter.SetImageColorMap(true);
  if (settings.pseudoMode) converter.SetMonoPseudoColorMode(*settings.pseudoMode);
  if (settings.lutPath && !converter.LoadLUTFrom(settings.lutPath->c_str()))
    throw RunError("cannot read the LUT file '" + *settings.lutPath + "'");
  if (settings.asc) {
    const auto [gain, offset, gamma] = *settings.asc;
    const double gains[3] = {gain, gain, gain}, offsets[3] = {offset, offset, offset},
                 gammas[3] = {gamma, gamma, gamma};
    converter.SetASCColorMap(true);
    converter.SetASCColorMapParam(gains, offsets, gammas);  // cannot refuse: ASC was just switched on
  }
  if (settings.clipLevel) converter.SetImageClipLevel(*settings.clipLevel);
}

}  // namespace kestrelink::tool
