#pragma once
// The colour-map settings a conversion can ask for, and putting them on a converter.
#include <array>
#include <cstdint>
#include <optional>
#include <string>

class CIppImageConverter;

namespace kestrelink::tool {

struct ColourMapSettings {
  std::optional<int32_t> pseudoMode;          // --pseudo
  std::optional<std::string> lutPath;         // --lut
  std::optional<std::array<double, 3>> asc;   // --asc: gain, offset, gamma for all three tables
  std::optional<int32_t> clipLevel;           // --clip

  bool Any() const { return pseudoMode || lutPath || asc || clipLevel; }
};

// Turns the colour map on and sets each engine setting asked for; a LUT file
// that can't be loaded is a RunError. Does nothing when no setting is asked for.
void ApplyColourMap(CIppImageConverter& converter, const ColourMapSettings& settings);

}  // namespace kestrelink::tool
