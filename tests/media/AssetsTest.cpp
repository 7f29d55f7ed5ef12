#include "vrUtils/Assets.h"

#include "tests/support/AllocationCounter.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <deque>
#include <initializer_list>

using namespace vrUtils::Assets;
using test::Logged;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr auto firstComplaint = L"*** Get first mob not a valid mob";
constexpr auto nextComplaint = L"*** Get next mob not a valid mob";

// An item whose list has a node for each record, in their order.
class Asset {
  public:
    Asset(std::initializer_list<MyMobID*> mobs) {
        item.mobs.reset(new MobList);
        for (auto* const mob : mobs) {
            m_nodes.push_back({mob, nullptr});
            if (m_nodes.size() > 1)
                m_nodes[m_nodes.size() - 2].next = &m_nodes.back();
        }
        if (!m_nodes.empty())
            item.mobs->first = &m_nodes.front();
    }
    Asset(Asset const&) = delete;
    Asset& operator=(Asset const&) = delete;

    MobListNode* node(std::size_t index) { return &m_nodes[index]; }
    MobListNode* cursor() const { return item.mobs->current; }

    vrAssetItem item;

  private:
    // Its elements stay where they are when it grows.
    std::deque<MobListNode> m_nodes;
};

MyMobID record(std::uint32_t duration = 0, std::uint32_t baseTimecode = 0) {
    MyMobID mob;
    mob.tag = MyMobID::validTag;
    mob.duration = duration;
    mob.baseTimecode = baseTimecode;
    return mob;
}

class Assets : public testing::Test {
  protected:
    MyMobID one = record(2000, 90000);
    MyMobID two = record(10, 20);
    MyMobID three = record(30, 40);
    MyMobID bad;
    test::LogRecorder log;
};

} // namespace

TEST_F(Assets, ItemWithoutAListHasNothing) {
    vrAssetItem const item;

    EXPECT_EQ(nullptr, getFirstMobID(item));
    EXPECT_EQ(nullptr, getNextMobID(item));
    EXPECT_EQ(0u, getBaseTC(item));
    EXPECT_EQ(0u, getDuration(item));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, EmptyListHasNothing) {
    Asset const asset{};

    EXPECT_EQ(nullptr, getFirstMobID(asset.item));
    EXPECT_EQ(nullptr, getNextMobID(asset.item));
    EXPECT_EQ(0u, getBaseTC(asset.item));
    EXPECT_EQ(0u, getDuration(asset.item));
    EXPECT_EQ(nullptr, asset.cursor());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, EmptyListLeavesTheWalkWhereItWas) {
    Asset asset{&one, &two};
    getFirstMobID(asset.item);
    asset.item.mobs->first = nullptr;

    EXPECT_EQ(nullptr, getFirstMobID(asset.item));
    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, WalkGivesEachRecordInOrder) {
    Asset asset{&one, &two, &three};

    EXPECT_EQ(&one, getFirstMobID(asset.item));
    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_EQ(&two, getNextMobID(asset.item));
    EXPECT_EQ(asset.node(1), asset.cursor());
    EXPECT_EQ(&three, getNextMobID(asset.item));
    EXPECT_EQ(asset.node(2), asset.cursor());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, WalkStaysAtItsEnd) {
    Asset asset{&one};
    getFirstMobID(asset.item);

    for (int call = 0; call < 3; ++call) {
        EXPECT_EQ(nullptr, getNextMobID(asset.item));
        EXPECT_EQ(asset.node(0), asset.cursor());
    }
    EXPECT_EQ(&one, getFirstMobID(asset.item));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, WalkGoesOnWhenTheListGrowsAtItsEnd) {
    Asset asset{&one};
    MobListNode added{&two, nullptr};
    getFirstMobID(asset.item);
    getNextMobID(asset.item);

    asset.node(0)->next = &added;

    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, WalkThatHasNotBegunHasNoNext) {
    Asset asset{&one, &two};

    EXPECT_EQ(nullptr, getNextMobID(asset.item));
    EXPECT_EQ(nullptr, asset.cursor());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, FirstRestartsTheWalk) {
    Asset asset{&one, &two, &three};
    getFirstMobID(asset.item);
    getNextMobID(asset.item);
    getNextMobID(asset.item);

    EXPECT_EQ(&one, getFirstMobID(asset.item));
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, FirstNodeWithoutARecordBeginsTheWalkInSilence) {
    Asset asset{nullptr, &two};

    EXPECT_EQ(nullptr, getFirstMobID(asset.item));
    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_EQ(&two, getNextMobID(asset.item));
    EXPECT_EQ(0u, getBaseTC(asset.item));
    EXPECT_EQ(0u, getDuration(asset.item));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, FirstRecordWithAnotherTagIsLoggedAndBeginsTheWalk) {
    Asset asset{&bad, &two};

    EXPECT_EQ(nullptr, getFirstMobID(asset.item));
    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_THAT(log.lines(), ElementsAre(Logged(3, firstComplaint)));
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, NextRecordWithAnotherTagIsLoggedAndPassed) {
    Asset asset{&one, &bad, &three};
    getFirstMobID(asset.item);

    EXPECT_EQ(nullptr, getNextMobID(asset.item));
    EXPECT_EQ(asset.node(1), asset.cursor());
    EXPECT_THAT(log.lines(), ElementsAre(Logged(3, nextComplaint)));
    EXPECT_EQ(&three, getNextMobID(asset.item));
}

TEST_F(Assets, NextNodeWithoutARecordIsPassedInSilence) {
    Asset asset{&one, nullptr, &three};
    getFirstMobID(asset.item);

    EXPECT_EQ(nullptr, getNextMobID(asset.item));
    EXPECT_EQ(asset.node(1), asset.cursor());
    EXPECT_EQ(&three, getNextMobID(asset.item));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, LogLinesCarryNoValues) {
    Asset const asset{&bad, &bad};
    getFirstMobID(asset.item);
    getNextMobID(asset.item);

    for (auto const& line : log.lines()) {
        EXPECT_THAT(line.values, IsEmpty());
        EXPECT_FALSE(line.file.has_value());
    }
    EXPECT_THAT(log.texts(), ElementsAre(firstComplaint, nextComplaint));
}

TEST_F(Assets, EveryBitOfTheTagCounts) {
    for (int bit = 0; bit < 32; ++bit) {
        auto mob = record(1, 1);
        mob.tag ^= std::uint32_t{1} << bit;
        Asset const asset{&mob};

        EXPECT_EQ(nullptr, getFirstMobID(asset.item)) << bit;
    }
    EXPECT_EQ(32u, log.lines().size());
}

TEST_F(Assets, FactsAreThoseOfTheFirstRecord) {
    Asset const asset{&one, &two};

    EXPECT_EQ(90000u, getBaseTC(asset.item));
    EXPECT_EQ(2000u, getDuration(asset.item));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Assets, FactsAreReadFromTheirWords) {
    std::uint32_t words[] = {0x6D6F6262, 11, 12, 13, 14, 15};
    static_assert(sizeof words == sizeof(MyMobID));
    Asset const asset{reinterpret_cast<MyMobID*>(words)};

    EXPECT_EQ(14u, getDuration(asset.item));
    EXPECT_EQ(15u, getBaseTC(asset.item));
}

TEST_F(Assets, FactsTakeAllBits) {
    auto mob = record(0xFFFFFFFF, 0x80000000);
    Asset const asset{&mob};

    EXPECT_EQ(0xFFFFFFFFu, getDuration(asset.item));
    EXPECT_EQ(0x80000000u, getBaseTC(asset.item));
}

TEST_F(Assets, FactsOfARecordWithAnotherTagAreZeroAndLogged) {
    bad.duration = 1;
    bad.baseTimecode = 2;
    Asset const asset{&bad, &two};

    EXPECT_EQ(0u, getBaseTC(asset.item));
    EXPECT_EQ(0u, getDuration(asset.item));
    EXPECT_THAT(log.lines(), ElementsAre(Logged(3, firstComplaint), Logged(3, firstComplaint)));
}

TEST_F(Assets, BaseTimecodeRestartsAWalk) {
    Asset asset{&one, &two, &three};
    getFirstMobID(asset.item);
    getNextMobID(asset.item);

    getBaseTC(asset.item);

    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, DurationRestartsAWalk) {
    Asset asset{&one, &two, &three};
    getFirstMobID(asset.item);
    getNextMobID(asset.item);

    getDuration(asset.item);

    EXPECT_EQ(asset.node(0), asset.cursor());
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, CopiesOfAnItemShareTheWalk) {
    Asset asset{&one, &two, &three};
    vrAssetItem const copy = asset.item;

    getFirstMobID(asset.item);

    EXPECT_EQ(&two, getNextMobID(copy));
    EXPECT_EQ(&three, getNextMobID(asset.item));
    EXPECT_EQ(&one, getFirstMobID(copy));
    EXPECT_EQ(&two, getNextMobID(asset.item));
}

TEST_F(Assets, WalkKeepsNoShareOfTheList) {
    Asset const asset{&one, &bad};

    getFirstMobID(asset.item);
    getNextMobID(asset.item);
    getBaseTC(asset.item);

    EXPECT_EQ(1, asset.item.mobs.use_count());
}

TEST_F(Assets, WalkAllocatesNothing) {
    Asset const asset{&one, &two};
    test::AllocationCounter const counter;

    getFirstMobID(asset.item);
    getNextMobID(asset.item);
    getDuration(asset.item);

    EXPECT_EQ(0u, counter.allocations());
}

namespace {

// An item that loses its list while the library logs.
struct Dropped {
    static void drop(char, wchar_t const*, wchar_t const*, ...) noexcept {
        item.mobs.reset();
        wasAliveInTheCall = isAlive;
    }

    static inline vrAssetItem item;
    static inline bool isAlive = false;
    static inline bool wasAliveInTheCall = false;
};

} // namespace

TEST(AssetsInUse, ListLivesAsLongAsTheCall) {
    MyMobID bad;
    MobListNode node{&bad, nullptr};
    MobList list{&node, nullptr, nullptr};
    Dropped::isAlive = true;
    Dropped::item.mobs.reset(&list, [](MobList*) { Dropped::isAlive = false; });
    test::ImportPatch const patch(
        "VL_WriteLog", reinterpret_cast<test::ImportPatch::Function>(&Dropped::drop),
        test::moduleUnderTest());

    getFirstMobID(Dropped::item);

    EXPECT_TRUE(Dropped::wasAliveInTheCall);
    EXPECT_FALSE(Dropped::isAlive);
}
