#pragma once
// The look verb, and what the demosaic verb shares with it: the names of the
// look algorithms and loading a look into a corrector.
#include <kestrelink/CIppBayerCorrector.h>

#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace kestrelink::tool {

int RunLook(std::span<const std::string_view> args);
void PrintLookUsage(std::ostream& out);

// "table", "exact" or "1d"; `option` names the option in the message.
CORRECTIONAL_ALG ParseLookAlgorithm(std::string_view option, std::string_view text);

// Loads the look file into the corrector in automatic mode with the
// algorithm asked for, or without one the 3D table through the precomputed
// table when the file has one, else the 1D table. A file that can't be read,
// or lacks the table asked for, is a RunError.
void SetLook(CIppBayerCorrector& corrector, const std::string& path, const CORRECTIONAL_ALG* algorithm);

}  // namespace kestrelink::tool
