// A recording that runs past midnight: its start and length come from the asset's media objects,
// and the in-point that an editor asks for after midnight is moved onto the same axis.

#include <vrUtils/Assets.h>
#include <vrUtils/OverMidnightInPointAdjuster.h>
#include <vrUtils/Servers.h>
#include <vrUtils/Tracks.h>

#include <boost/make_shared.hpp>

#include <iostream>

namespace Assets = vrUtils::Assets;

namespace {

constexpr std::uint32_t minute = 60 * 25;

MyMobID mob(std::uint32_t baseTimecode, std::uint32_t duration) {
    MyMobID record;
    record.tag = MyMobID::validTag;
    record.baseTimecode = baseTimecode;
    record.duration = duration;
    return record;
}

} // namespace

int main() {
    auto const day = OverMidnightInPointAdjuster::DayLength(eFrameRate25);
    MyMobID master = mob(static_cast<std::uint32_t>(day) - minute, 2 * minute);
    MyMobID proxy = mob(0, 2 * minute);
    MobListNode second{&proxy, nullptr};
    MobListNode first{&master, &second};
    vrAssetItem item;
    item.mobs = boost::make_shared<MobList>();
    item.mobs->first = &first;

    // The place of the walk is kept in the item, so one walk at a time.
    int mobs = 0;
    for (auto* record = Assets::getFirstMobID(item); record; record = Assets::getNextMobID(item))
        ++mobs;
    std::wcout << L"media objects: " << mobs << L'\n';

    auto const start = Assets::getBaseTC(item);
    auto const duration = Assets::getDuration(item);
    unsigned long const askedFor = minute / 2;
    OverMidnightInPointAdjuster const adjuster(start, duration, askedFor, eFrameRate25);
    auto const inPoint = adjuster.Adjust();
    std::wcout << L"in-point: " << askedFor << L" stands for " << inPoint << L", frame "
               << inPoint - start << L" of " << duration << L'\n';

    std::wcout << L"track: " << vrUtils::Tracks::typeName(eTrackTimecode) << L'\n';
    auto const isCombining = vrUtils::Servers::isCombiningArchive(eServerCombiningArchive);
    std::wcout << (isCombining ? L"combines with its archive\n" : L"has its archive apart\n");
    return mobs == 2 && inPoint == day + askedFor ? 0 : 1;
}
