#ifndef TESTS_FOUNDATION_RANDOMTEXT_H
#define TESTS_FOUNDATION_RANDOMTEXT_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

// Random texts over a small alphabet. The generator's numbers are used as they come, not through
// a distribution, so that a seed means the same texts with every standard library.
template <typename Character>
class RandomText {
  public:
    RandomText(std::basic_string_view<Character> alphabet, std::uint32_t seed)
        : m_alphabet(alphabet), m_numbers(seed) {}

    // A text of at most that many characters, the empty one included.
    std::basic_string<Character> upTo(std::size_t longest) { return between(0, longest); }

    std::basic_string<Character> between(std::size_t shortest, std::size_t longest) {
        std::basic_string<Character> text(shortest + below(longest - shortest + 1), Character());
        for (auto& character : text)
            character = m_alphabet[below(m_alphabet.size())];
        return text;
    }

    std::size_t below(std::size_t limit) { return m_numbers() % limit; }

  private:
    std::basic_string_view<Character> m_alphabet;
    std::mt19937 m_numbers;
};

#endif
