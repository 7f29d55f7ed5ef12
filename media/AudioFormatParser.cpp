#include "vrUtils/Parsing.h"

namespace vrUtils::Parsing {

AudioFormatParser::AudioFormatParser(unsigned char const* buffer, std::uint32_t length)
    : TagParser(buffer, length) {}

} // namespace vrUtils::Parsing
