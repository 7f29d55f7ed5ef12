#ifndef TESTS_FOUNDATION_RANDOMTEXT_H
#define TESTS_FOUNDATION_RANDOMTEXT_H

#include "tests/support/Campaign.h"

#include <cstddef>
#include <string>
#include <string_view>

// Random texts over a small alphabet, from the random source of a campaign's current round.
template <typename Character>
class RandomText {
  public:
    RandomText(std::basic_string_view<Character> alphabet, test::Campaign& campaign)
        : m_alphabet(alphabet), m_campaign(campaign) {}

    // A text of at most that many characters, the empty one included.
    std::basic_string<Character> upTo(std::size_t longest) { return between(0, longest); }

    std::basic_string<Character> between(std::size_t shortest, std::size_t longest) {
        std::basic_string<Character> text(shortest + below(longest - shortest + 1), Character());
        for (auto& character : text)
            character = m_alphabet[below(m_alphabet.size())];
        return text;
    }

    std::size_t below(std::size_t limit) { return m_campaign.below(limit); }

  private:
    std::basic_string_view<Character> m_alphabet;
    test::Campaign& m_campaign;
};

#endif
