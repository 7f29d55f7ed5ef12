#ifndef TESTS_MEDIA_EXTENDEDRATEMODEL_H
#define TESTS_MEDIA_EXTENDEDRATEMODEL_H

#include <cstdint>
#include <initializer_list>

namespace test {

// The rate in an 80-bit field, told a second time and without floating-point numbers: the field is
// a row of 80 bits, bit 0 being the first byte's top one, and the number is shifted into place.
inline std::uint32_t modelOfExtendedRate(unsigned char const* field) {
    auto const bit = [field](int index) -> std::uint64_t {
        return field[index / 8] >> (7 - index % 8) & 1;
    };

    std::uint64_t exponent = 0;
    for (int index : {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14, 15}) {
        exponent = exponent << 1 | bit(index);
        if (index == 7)
            exponent <<= 1;
    }
    exponent = (exponent + 0x10000 - 0x400) % 0x800;
    std::uint64_t number = 1;
    for (int index = 17; index < 17 + 52; ++index)
        number = number << 1 | bit(index);

    // The number has 53 bits, of which exponent - 1022 stand before the point.
    int const bitsBeforePoint = static_cast<int>(exponent) - 1022;
    if (bitsBeforePoint <= 0 || bitsBeforePoint > 63)
        return 0;
    number =
        bitsBeforePoint <= 53 ? number >> (53 - bitsBeforePoint) : number << (bitsBeforePoint - 53);
    bool const isNegative = bit(8) != 0;
    return static_cast<std::uint32_t>(isNegative ? 0 - number : number);
}

} // namespace test

#endif
