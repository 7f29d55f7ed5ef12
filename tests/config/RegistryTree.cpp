#include "tests/config/RegistryTree.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <stdexcept>

namespace test {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t longestData = 1024;
constexpr std::size_t longestName = 255;

bool holds(std::wstring const& text, wchar_t const* part) {
    return text.find(part) != std::wstring::npos;
}

bool holdsTypeWord(std::wstring const& text) {
    return holds(text, L"hex") || holds(text, L"dword");
}

// A printable character, of the first or the second half of a code page.
wchar_t randomCharacter(Campaign& campaign) {
    auto const number = campaign.below(0x7F - 0x20 + 0x60);
    return static_cast<wchar_t>(number < 0x7F - 0x20 ? 0x20 + number : 0xA0 + number - 0x5F);
}

std::wstring randomText(Campaign& campaign, std::wstring const& without, std::size_t limit = 20) {
    std::wstring text;
    for (auto count = campaign.below(limit); count > 0; --count) {
        auto const character = randomCharacter(campaign);
        if (without.find(character) == std::wstring::npos)
            text += character;
    }
    return holdsTypeWord(text) ? L"" : text;
}

Bytes randomBytes(Campaign& campaign, std::size_t limit) {
    Bytes bytes(campaign.below(limit));
    std::generate(bytes.begin(), bytes.end(), [&] {
        return static_cast<unsigned char>(campaign.below(256));
    });
    return bytes;
}

Bytes bytesOf(std::wstring const& text) {
    Bytes bytes;
    for (auto const character : text) {
        bytes.push_back(static_cast<unsigned char>(character & 0xFF));
        bytes.push_back(static_cast<unsigned char>(character >> 8));
    }
    return bytes;
}

std::wstring textOf(Bytes const& bytes) {
    std::wstring text;
    for (std::size_t index = 1; index < bytes.size(); index += 2)
        text += static_cast<wchar_t>(bytes[index - 1] | bytes[index] << 8);
    return text;
}

std::wstring upToZero(std::wstring const& text) { return text.substr(0, text.find(L'\0')); }

RegistryValue randomList(Campaign& campaign) {
    std::wstring list;
    for (auto count = campaign.below(4); count > 0; --count) {
        auto length = 1 + campaign.below(8);
        for (; length > 0; --length)
            list += static_cast<wchar_t>(1 + campaign.below(0xFFFF));
        list += L'\0';
    }
    return {REG_MULTI_SZ, bytesOf(list + L'\0')};
}

RegistryValue randomSurvivingValue(Campaign& campaign) {
    switch (campaign.below(4)) {
    case 0:
        return textValue(randomText(campaign, L"", 60));
    case 1:
        return numberValue(static_cast<std::uint32_t>(campaign.random()()));
    case 2:
        return {REG_BINARY, randomBytes(campaign, 40)};
    default:
        return randomList(campaign);
    }
}

RegistryValue randomLosingValue(Campaign& campaign) {
    constexpr std::array<wchar_t const*, 8> texts{L"a hex text",   L"dword",       L"two\r\nlines",
                                                  L"\x80\x81\x9F", L"euro \x20AC", L"=",
                                                  L"a\rb",         L"tab\t"};
    constexpr std::array<DWORD, 7> types{REG_NONE,  REG_SZ,       REG_EXPAND_SZ, REG_BINARY,
                                         REG_DWORD, REG_MULTI_SZ, REG_QWORD};
    switch (campaign.below(8)) {
    case 0:
    case 1:
        return textValue(texts[campaign.below(texts.size())]);
    case 2:
        return {REG_BINARY, Bytes(1020 + campaign.below(10), 7)};
    case 3:
        return {REG_MULTI_SZ, Bytes(1020 + campaign.below(10), 7)};
    case 4:
        return {types[campaign.below(types.size())], randomBytes(campaign, 12)};
    case 5:
        return {REG_SZ, bytesOf(L"text" + std::wstring(1, L'\0') + L"behind")};
    default:
        return randomSurvivingValue(campaign);
    }
}

std::wstring randomLosingName(Campaign& campaign) {
    switch (campaign.below(12)) {
    case 0:
        return L"a=b";
    case 1:
        return std::wstring(250 + campaign.below(8), L'n');
    default:
        return randomText(campaign, L"=");
    }
}

std::wstring withoutBlanksAtTheEnd(std::wstring const& text) {
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

using MakeValue = RegistryValue (*)(Campaign&);
using MakeName = std::wstring (*)(Campaign&);

std::wstring survivingName(Campaign& campaign) { return randomText(campaign, L"="); }

RegistryValues randomValues(Campaign& campaign, MakeName makeName, MakeValue makeValue) {
    RegistryValues values;
    auto const count = campaign.below(6);
    // The digits in front settle the order.
    for (std::size_t number = 0; number < count; ++number)
        values[std::to_wstring(10 + number) + makeName(campaign)] = makeValue(campaign);
    return values;
}

RegistryTree randomTree(Campaign& campaign, MakeName makeName, MakeValue makeValue) {
    RegistryTree tree{{L"", randomValues(campaign, makeName, makeValue)}};
    std::function<void(std::wstring const&, int)> const grow = [&](auto const& path, int depth) {
        auto const count = campaign.below(3);
        for (std::size_t number = 0; number < count && depth < 3; ++number) {
            auto const key = path + (path.empty() ? L"" : L"\\") + std::to_wstring(10 + number) +
                             withoutBlanksAtTheEnd(randomText(campaign, L"\\"));
            tree[key] = randomValues(campaign, makeName, makeValue);
            if (campaign.below(2) == 0)
                tree[key][L""] = makeValue(campaign);
            grow(key, depth + 1);
        }
    };
    grow(L"", 0);
    return tree;
}

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};

using OwnedKey = std::unique_ptr<HKEY__, KeyCloser>;

OwnedKey opened(ScratchKey const& key, std::wstring const& path) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(key.hive(), key.key(path).c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS)
        throw std::runtime_error("a key of a tree does not open");
    return OwnedKey(handle);
}

void read(ScratchKey const& key, std::wstring const& path, RegistryTree& tree) {
    auto const handle = opened(key, path);
    auto& values = tree[path];
    std::wstring name(16384, L'\0');
    for (DWORD index = 0;; ++index) {
        auto units = static_cast<DWORD>(name.size());
        if (RegEnumValueW(
                handle.get(), index, name.data(), &units, nullptr, nullptr, nullptr, nullptr))
            break;
        auto const valueName = name.substr(0, units);
        values[valueName] = key.get(valueName, path).value();
    }
    for (DWORD index = 0;; ++index) {
        auto units = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(
                handle.get(), index, name.data(), &units, nullptr, nullptr, nullptr, nullptr))
            return;
        read(key, path + (path.empty() ? L"" : L"\\") + name.substr(0, units), tree);
    }
}

std::wstring digits(unsigned char byte, bool isHexadecimal) {
    char text[4];
    std::snprintf(text, sizeof text, isHexadecimal ? "%02x" : "%02u", byte);
    return {text, text + std::strlen(text)};
}

bool beginsWith(std::wstring const& text, std::wstring const& begin) {
    return text.compare(0, begin.size(), begin) == 0;
}

// Writes the lines of a tree as the page says, and reads each of them back as it says.
class Losses {
  public:
    explicit Losses(RegistryTree const& tree) {
        for (auto const& [path, values] : tree) {
            m_remains.tree[path];
            for (auto const& [name, value] : values) {
                read(path, line(name, value));
                if (m_ended)
                    return;
            }
        }
    }

    Remains const& remains() const { return m_remains; }

  private:
    std::wstring line(std::wstring const& name, RegistryValue const& value) {
        bool const isNamed = name.size() <= longestName;
        bool const hasData = isNamed && value.data.size() <= longestData;
        auto const begin = L'"' + (isNamed ? name : L"") + L"\"=";
        switch (value.type) {
        case REG_SZ:
            return hasData ? begin + L'"' + upToZero(textOf(value.data)) + L'"' : begin;
        case REG_DWORD:
            m_isHexadecimal = m_isHexadecimal || hasData;
            return begin + L"dword:" + (hasData ? number(value.data) : L"");
        case REG_BINARY:
            return begin + L"hex:" + (hasData ? list(value.data) : L"");
        case REG_MULTI_SZ:
            return begin + L"hex(7):" + (hasData ? list(value.data) : L"");
        default:
            return begin;
        }
    }

    static std::wstring number(Bytes data) {
        std::wstring text;
        data.resize(sizeof(std::uint32_t));
        for (auto byte = data.rbegin(); byte != data.rend(); ++byte)
            text += digits(*byte, true);
        return text;
    }

    std::wstring list(Bytes const& data) const {
        std::wstring text;
        for (auto const byte : data)
            text += (text.empty() ? L"" : L",") + digits(byte, m_isHexadecimal);
        return text;
    }

    void read(std::wstring const& path, std::wstring line) {
        auto const stop = std::find_if(line.begin(), line.end(), [](wchar_t character) {
            return character > 0xFF || character == L'\r' || character == L'\n';
        });
        m_ended = stop != line.end() && *stop > 0xFF;
        line = withoutBlanksAtTheEnd({line.begin(), stop});

        auto const sign = line.find(L'=');
        if (sign == std::wstring::npos)
            return;
        auto const name = throughCodePage(line.substr(1, sign - 2));
        auto const value = valueOf(line.substr(sign + 1));
        if (value) {
            m_remains.tree[path][name] = *value;
            m_remains.status = ERROR_SUCCESS;
        }
    }

    // What stands behind the equals sign; none if that is passed over.
    std::optional<RegistryValue> valueOf(std::wstring const& text) {
        if (text.empty())
            return end();
        if (beginsWith(text, L"dword:"))
            return numberValue(
                text.size() == 6
                    ? 0
                    : static_cast<std::uint32_t>(std::stoul(text.substr(6), nullptr, 16)));
        if (beginsWith(text, L"hex:"))
            return bytesValue(REG_BINARY, text.substr(4));
        if (beginsWith(text, L"hex(7):"))
            return bytesValue(REG_MULTI_SZ, text.substr(7));
        if (holdsTypeWord(text))
            return std::nullopt;
        return textValue(throughCodePage(text.size() == 1 ? L"" : text.substr(1, text.size() - 2)));
    }

    std::optional<RegistryValue> bytesValue(DWORD type, std::wstring const& text) {
        Bytes bytes;
        auto const digit = [](wchar_t character) {
            return character == L',' ? 0 : std::stoi(std::wstring(1, character), nullptr, 16);
        };
        for (std::size_t index = 0; index < text.size(); index += 3) {
            if (index + 1 == text.size())
                return end();
            bytes.push_back(
                static_cast<unsigned char>(digit(text[index]) * 16 + digit(text[index + 1])));
        }
        if (type == REG_BINARY)
            return RegistryValue{type, bytes};
        if (!bytes.empty())
            return RegistryValue{type, shortenedList(bytes)};
        m_remains.status = ERROR_INVALID_DATA;
        return std::nullopt;
    }

    // A list ends with its first empty string; one without an end gets a zero.
    static Bytes shortenedList(Bytes bytes) {
        if (bytes.size() % 2 != 0)
            bytes.push_back(0);
        auto list = textOf(bytes);
        auto const empty = list.find(std::wstring(2, L'\0'));
        if (list.front() == L'\0')
            list.resize(1);
        else if (empty != std::wstring::npos)
            list.resize(empty + 2);
        else if (list.back() != L'\0')
            list += L'\0';
        return bytesOf(list);
    }

    static std::wstring throughCodePage(std::wstring const& text) {
        std::string const bytes(text.begin(), text.end());
        std::wstring read(bytes.size(), L'\0');
        MultiByteToWideChar(
            CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), read.data(),
            static_cast<int>(read.size()));
        return read;
    }

    std::nullopt_t end() {
        m_remains.status = std::nullopt;
        m_ended = true;
        return std::nullopt;
    }

    Remains m_remains{{}, vrUtils::Registry::RegRestoreNothing};
    bool m_isHexadecimal = false;
    bool m_ended = false;
};

} // namespace

RegistryValue textValue(std::wstring const& text) { return {REG_SZ, bytesOf(text + L'\0')}; }

RegistryValue numberValue(std::uint32_t number) {
    Bytes bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<unsigned char>(number >> shift));
    return {REG_DWORD, bytes};
}

void put(RegistryTree const& tree, ScratchKey const& key) {
    for (auto const& [path, values] : tree) {
        key.makeKey(path);
        for (auto const& [name, value] : values)
            key.set(name, value.type, value.data, path);
    }
}

RegistryTree treeOf(ScratchKey const& key) {
    RegistryTree tree;
    read(key, L"", tree);
    return tree;
}

RegistryTree randomSurvivor(Campaign& campaign) {
    auto tree = randomTree(campaign, survivingName, randomSurvivingValue);
    // Ahead of all others, so that bytes are hexadecimal.
    tree[L""][L"00"] = numberValue(1);
    return tree;
}

RegistryTree randomLoser(Campaign& campaign) {
    return randomTree(campaign, randomLosingName, randomLosingValue);
}

Remains remainsOf(RegistryTree const& tree) { return Losses(tree).remains(); }

} // namespace test
