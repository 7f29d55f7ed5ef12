#include "vrUtils/Parsing.h"

#include "tests/media/AudioHeads.h"
#include "tests/media/GuardedBytes.h"
#include "tests/media/HeadModel.h"
#include "tests/support/Campaign.h"

#include <gtest/gtest.h>

#include <array>

using test::Bytes;
using test::Campaign;
using test::chunk;
using test::lyingChunk;
using test::outcomeOf;
using vrUtils::Parsing::AIFParser;
using vrUtils::Parsing::WavParser;

namespace {

constexpr std::size_t capacity = 4096;

void changeByte(Bytes& head, Campaign& campaign) {
    head[campaign.below(head.size())] = static_cast<unsigned char>(campaign.below(256));
}

// Lengths that lead out of the buffer, around the number range and back are what does harm.
void changeWord(Bytes& head, Campaign& campaign) {
    constexpr std::array<std::uint32_t, 6> words{0,          1,          0x7FFFFFFF,
                                                 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8};
    auto word = words[campaign.below(words.size())];
    if (campaign.below(2) == 0)
        word = 0u - static_cast<std::uint32_t>(campaign.below(200));
    bool const isBigEndian = campaign.below(2) == 0;
    auto const start = campaign.below(head.size());
    for (std::size_t i = 0; i < 4 && start + i < head.size(); ++i)
        head[start + i] = static_cast<unsigned char>(word >> 8 * (isBigEndian ? 3 - i : i));
}

void cut(Bytes& head, Campaign& campaign) { head.resize(1 + campaign.below(head.size())); }

void repeatPart(Bytes& head, Campaign& campaign) {
    auto const start = campaign.below(head.size());
    auto const count = campaign.below(std::min<std::size_t>(head.size() - start, 64) + 1);
    Bytes const part(
        head.begin() + static_cast<std::ptrdiff_t>(start),
        head.begin() + static_cast<std::ptrdiff_t>(start + count));
    auto const place = static_cast<std::ptrdiff_t>(campaign.below(head.size()));
    head.insert(head.begin() + place, part.begin(), part.end());
}

Bytes mutated(Bytes head, Campaign& campaign) {
    constexpr std::array mutations{changeByte, changeWord, changeWord, cut, repeatPart};
    for (auto count = 1 + campaign.below(6); count > 0; --count)
        mutations[campaign.below(mutations.size())](head, campaign);
    return head;
}

// Every head, however damaged, gives what the rules say, and no byte behind it is read.
template <typename Parser, typename Model>
void storm(Bytes const& head, Model const& model) {
    test::GuardedBytes buffer(capacity);
    Campaign campaign(100000);
    while (campaign.nextRound()) {
        auto const damaged = mutated(head, campaign);
        buffer.place(damaged);

        auto const outcome = outcomeOf<Parser>(buffer.data(), buffer.size());

        ASSERT_EQ(model(damaged), outcome) << campaign;
    }
}

} // namespace

TEST(AudioHeadCampaign, DamagedWavHeadsGiveWhatTheRulesSay) {
    storm<WavParser>(
        test::wavFile(
            {chunk("JUNK", Bytes(28)), chunk("fact", Bytes(4)),
             chunk("fmt ", test::wavFormat(48000, 24)), chunk("data", Bytes(40))}),
        test::modelOfWav);
}

TEST(AudioHeadCampaign, DamagedAiffHeadsGiveWhatTheRulesSay) {
    storm<AIFParser>(
        test::aiffFile(
            {chunk("FVER", Bytes(4)), chunk("NAME", Bytes(28)),
             chunk("COMM", test::aiffFormat(test::extended(48000), 24)), chunk("SSND", Bytes(40))},
            "AIFC"),
        test::modelOfAiff);
}
