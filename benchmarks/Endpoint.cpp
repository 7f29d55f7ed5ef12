// An endpoint split into host and port.

#include "benchmarks/Candidate.h"

#include "vrUtils/TcpComms.h"

#include <sstream>
#include <string>
#include <utility>

#ifdef PEER_POCO
#include <Poco/NumberParser.h>
#include <Poco/UnicodeConverter.h>
#endif

namespace {

using Endpoint = std::pair<std::wstring, std::uint32_t>;

std::wstring const text = L"interplay01.example.com:60790";

Endpoint ours() {
    Endpoint endpoint;
    vrUtils::TcpComms::getHostAndPort(text, 0, &endpoint.first, &endpoint.second);
    return endpoint;
}

Endpoint byStream() {
    auto const colon = text.find(L':');
    Endpoint endpoint(text.substr(0, colon), 0xFFFFFFFF);
    std::wistringstream(text.substr(colon + 1)) >> endpoint.second;
    return endpoint;
}

Endpoint byHand() {
    auto const colon = text.find(L':');
    return {
        text.substr(0, colon),
        static_cast<std::uint32_t>(std::wcstoul(&text[colon + 1], nullptr, 10))};
}

#ifdef PEER_POCO
Endpoint poco() {
    auto const colon = text.find(L':');
    std::string digits;
    Poco::UnicodeConverter::toUTF8(text.substr(colon + 1), digits);
    return {text.substr(0, colon), Poco::NumberParser::parseUnsigned(digits)};
}
#endif

} // namespace

void benchmarks::registerCandidates() {
    candidate("endpoint", "ours", ours);
    candidate("endpoint", "stream", byStream);
    candidate("endpoint", "hand", byHand);
#ifdef PEER_POCO
    candidate("endpoint", "poco", poco);
#endif
}
