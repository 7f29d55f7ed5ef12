#ifndef TESTS_MEDIA_WALKINGPARSER_H
#define TESTS_MEDIA_WALKINGPARSER_H

#include "tests/media/AudioHeads.h"

#include "vrUtils/Parsing.h"

namespace test {

// A parser that lets a test walk by hand.
class WalkingParser : public vrUtils::Parsing::TagParser {
  public:
    using TagParser::TagParser;

    explicit WalkingParser(Bytes const& buffer)
        : TagParser(buffer.data(), static_cast<std::uint32_t>(buffer.size())) {}

    explicit WalkingParser(Bytes&&) = delete;

    void Parse() override {}

    using TagParser::FindTag;
    using TagParser::ReadNextLength;
    using TagParser::ReadNextName;
    using TagParser::ReadNextTag;
    using TagParser::ReadNextValue;
};

} // namespace test

#endif
