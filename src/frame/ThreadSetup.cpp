#include "frame/ThreadSetup.h"

#include "platform/OpenMP.h"
#include "platform/Registry.h"

namespace kestrelink {
namespace {

constexpr int kDefaultTeam = 2;

int WantedFromStore() {
  using namespace platform;
  auto key = RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", /*create=*/true);
  if (!key) return kDefaultTeam;
  RegistryValue value;
  if (!key->Query("OpenMPThread", value) || value.type != RegistryType::Dword) return kDefaultTeam;
  return static_cast<int>(value.dword);  // no range check: the store is trusted as it stands
}

}  // namespace

void SetupThreads(int requested) {
  const int wanted = requested != 0 ? requested : WantedFromStore();
  if (platform::MeasureTeamSize() != wanted) platform::SetTeamSize(wanted);
}

}  // namespace kestrelink
