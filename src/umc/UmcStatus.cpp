#include "umc/UmcStatus.h"

namespace UMC {

namespace {

struct StatusText {
  Status code;
  const char* text;
};

// The texts stand as worded, spelling included; callers match them.
constexpr StatusText kStatusTexts[] = {
    {UMC_OK, "No any errors"},
    {UMC_ERR_FAILED, "General operation fault"},
    {UMC_ERR_NOT_INITIALIZED, "Object was not initialized before usage"},
    {UMC_ERR_TIMEOUT, "Timeout"},
    {UMC_ERR_NOT_ENOUGH_DATA, "Not enough data"},
    {UMC_ERR_NULL_PTR, "Zero pointer was passed as param"},
    {UMC_ERR_INIT, "Failed to initialize codec"},
    {UMC_ERR_SYNC, "Required suncronization code was not found"},
    {UMC_ERR_NOT_ENOUGH_BUFFER, "Buffer size is not enough"},
    {UMC_ERR_END_OF_STREAM, "End of stream"},
    {UMC_ERR_OPEN_FAILED, "Device/file open error"},
    {UMC_ERR_ALLOC, "Failed to allocate memory"},
    {UMC_ERR_INVALID_STREAM, "Invalid stream"},
    {UMC_ERR_UNSUPPORTED, "Unsupported"},
    {UMC_ERR_NOT_IMPLEMENTED, "Not implemented yet"},
    {UMC_ERR_INVALID_PARAMS, "Incorrect parameters"},
};

}  // namespace

const char* GetErrString(Status status) {
  for (const StatusText& entry : kStatusTexts)
    if (entry.code == status) return entry.text;
  return nullptr;
}

}  // namespace UMC
