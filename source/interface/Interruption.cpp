// See Interruption.h.
#include "interface/Interruption.h"

#include <utility>

std::optional<LivingPalette> Interruption::Watch(ZVPalette* palette)
{
    return palette ? std::optional<LivingPalette>(palette) : std::nullopt;
}

Interruption::Interruption()
    : current_(ZVEnv->currentPalette),
      groupOwner_(Watch(ZVEnv->currentGroup ? ZVEnv->currentGroup->palette : nullptr)),
      group_(std::exchange(ZVEnv->currentGroup, nullptr)),
      building_(std::exchange(ZVEnv->buildingPalette, nullptr)), lastPaletteId_(ZVEnv->lastPaletteId),
      busyLevel_(ZVEnv->busyLevel), error_(GetErrorZV())
{
    SetError(ZV_ERR_NONE);
    while (ZVEnv->busyLevel > 0)
        NotBusyZV();
}

Interruption::~Interruption()
{
    // A palette under construction that is set aside is out of everybody's reach, so it is still there.
    ZVEnv->buildingPalette = building_;
    ZVEnv->currentGroup = groupOwner_ && groupOwner_->Is_Known() ? group_ : nullptr;
    ZVEnv->lastPaletteId = lastPaletteId_;
    while (ZVEnv->busyLevel < busyLevel_)
        BusyZV();
    SetError(error_);
}
