// The escapes of a URL replaced, for a URL of 64 bytes and a text of 1 MiB.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Strings.h"

#include <cstdlib>
#include <string>

#include <shlwapi.h>

#ifdef PEER_POCO
#include <Poco/URI.h>
#endif

namespace {

std::string const url = "/share/Evening%20News/Clips/Interview%20%28final%29.mxf?user=vrt";

std::string urlOf(std::size_t bytes) {
    std::string text;
    while (text.size() + url.size() <= bytes)
        text += url;
    return text;
}

// As it is written at first: byte by byte, a small string for every escape.
std::string naive(std::string const& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            decoded += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::string urlUnescape(std::string const& text) {
    std::string decoded(text);
    UrlUnescapeA(decoded.data(), nullptr, nullptr, URL_UNESCAPE_INPLACE);
    decoded.resize(std::char_traits<char>::length(decoded.data()));
    return decoded;
}

#ifdef PEER_POCO
std::string poco(std::string const& text) {
    std::string decoded;
    Poco::URI::decode(text, decoded);
    return decoded;
}
#endif

int digit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

// The least work: every escape taken for a good one, into memory that is there.
std::size_t limit(std::string const& text) {
    static std::string decoded(text.size(), '\0');
    decoded.resize(text.size());
    auto* out = decoded.data();
    for (auto const *c = text.data(), *const end = c + text.size(); c < end;) {
        if (*c == '%') {
            *out++ = static_cast<char>(digit(c[1]) * 16 + digit(c[2]));
            c += 3;
        } else {
            *out++ = *c++;
        }
    }
    return static_cast<std::size_t>(out - decoded.data());
}

void row(char const* name, std::string const& text) {
    using benchmarks::candidate;
    candidate(name, "ours", [&] { return vrUtils::Strings::DecodeURL(text); });
    candidate(name, "naive", [&] { return naive(text); });
#ifdef PEER_POCO
    candidate(name, "poco", [&] { return poco(text); });
#endif
    candidate(name, "UrlUnescapeA", [&] { return urlUnescape(text); });
    candidate(name, "limit", [&] { return limit(text); });
}

} // namespace

void benchmarks::registerCandidates() {
    static std::string const shortText = urlOf(64);
    static std::string const longText = urlOf(std::size_t{1} << 20);
    row("decode-64", shortText);
    row("decode-1Mi", longText);
}
