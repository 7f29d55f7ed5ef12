#include "tools/vrtool/AudioFormat.h"

#include "tools/vrtool/Platform.h"
#include "vrUtils/Parsing.h"

#include <algorithm>
#include <initializer_list>

namespace {

bool isOneOf(std::wstring const& extension, std::initializer_list<wchar_t const*> names) {
    return std::any_of(names.begin(), names.end(), [&](wchar_t const* name) {
        return CompareStringOrdinal(extension.c_str(), -1, name, -1, TRUE) == CSTR_EQUAL;
    });
}

bool isWav(std::wstring const& extension) { return isOneOf(extension, {L".wav"}); }

bool isAiff(std::wstring const& extension) {
    return isOneOf(extension, {L".aif", L".aiff", L".aifc"});
}

template <class Parser>
AudioFormat parse(unsigned char const* head, std::size_t size) {
    Parser parser(head, static_cast<std::uint32_t>(size));
    parser.Parse();
    return {parser.GetSamplesPerSecond(), parser.GetBitsPerSample()};
}

} // namespace

bool hasAudioFormat(std::wstring const& extension) { return isWav(extension) || isAiff(extension); }

std::optional<AudioFormat>
audioFormatOf(std::wstring const& extension, unsigned char const* head, std::size_t size) {
    if (isWav(extension))
        return parse<vrUtils::Parsing::WavParser>(head, size);
    if (isAiff(extension))
        return parse<vrUtils::Parsing::AIFParser>(head, size);
    return std::nullopt;
}
