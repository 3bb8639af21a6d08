#pragma once
// Status codes of the media framework: 0 for success, negative for errors.
// They stay inside the library; no exported method hands one out.
#include <cstdint>

namespace UMC {

using Status = int32_t;

enum : Status {
  UMC_OK = 0,
  UMC_ERR_FAILED = -999,
  UMC_ERR_NOT_INITIALIZED = -998,
  UMC_ERR_TIMEOUT = -987,
  UMC_ERR_NOT_ENOUGH_DATA = -996,
  UMC_ERR_NULL_PTR = -995,
  UMC_ERR_INIT = -899,
  UMC_ERR_SYNC = -897,
  UMC_ERR_NOT_ENOUGH_BUFFER = -896,
  UMC_ERR_END_OF_STREAM = -895,
  UMC_ERR_OPEN_FAILED = -894,
  UMC_ERR_ALLOC = -883,
  UMC_ERR_INVALID_STREAM = -882,
  UMC_ERR_UNSUPPORTED = -879,
  UMC_ERR_NOT_IMPLEMENTED = -878,
  UMC_ERR_INVALID_PARAMS = -876,
};

// The text of a status, or nullptr for a code the table does not hold.
const char* GetErrString(Status status);

}  // namespace UMC
