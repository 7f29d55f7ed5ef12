#include "vrUtils/Assets.h"

#include "foundation/Log.h"

namespace vrUtils::Assets {

namespace {

// The record of the node that the walk stands on.
MyMobID* validMob(MobList const& list, wchar_t const* complaint) {
    auto* const mob = list.current->mob;
    if (mob && mob->tag != MyMobID::validTag) {
        VL_WriteLog(LogLevel::failure, logModule, complaint);
        return nullptr;
    }
    return mob;
}

} // namespace

MyMobID* getFirstMobID(vrAssetItem const& item) {
    auto const list = item.mobs;
    if (!list || !list->first)
        return nullptr;
    list->current = list->first;
    return validMob(*list, L"*** Get first mob not a valid mob");
}

MyMobID* getNextMobID(vrAssetItem const& item) {
    auto const list = item.mobs;
    if (!list || !list->current || !list->current->next)
        return nullptr;
    list->current = list->current->next;
    return validMob(*list, L"*** Get next mob not a valid mob");
}

std::uint32_t getBaseTC(vrAssetItem const& item) {
    auto const* const mob = getFirstMobID(item);
    return mob ? mob->baseTimecode : 0;
}

std::uint32_t getDuration(vrAssetItem const& item) {
    auto const* const mob = getFirstMobID(item);
    return mob ? mob->duration : 0;
}

} // namespace vrUtils::Assets
