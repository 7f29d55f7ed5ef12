#include "tools/vrtool/DumpSurvey.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/ProfileLines.h"

#include <algorithm>
#include <cwchar>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

// How much the restore takes of a file's headers and of one section, a zero behind each included.
constexpr std::size_t mostOfHeaders = 8190;
constexpr std::size_t mostOfSection = 32766;
constexpr std::size_t longestKeyName = 255;
constexpr std::size_t longestShown = 60;

constexpr wchar_t openingLine[] = L"Windows Registry Editor Version 5.00";
constexpr wchar_t hexDigits[] = L"0123456789abcdefABCDEF";

// Why a line does not survive; none if it does.
using Why = std::optional<std::wstring>;

std::wstring shown(std::wstring const& text) {
    return text.size() <= longestShown ? text : text.substr(0, longestShown - 1) + L'\u2026';
}

// Names of sections and keys have no case.
std::wstring withoutCase(std::wstring text) {
    LCMapStringEx(
        LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(), static_cast<int>(text.size()),
        text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0);
    return text;
}

bool beginsWith(std::wstring_view text, std::wstring_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool isBlank(wchar_t unit) { return unit == L' ' || unit == L'\t'; }

bool isQuoted(std::wstring_view text) {
    return text.size() >= 2 && text.front() == L'"' && text.back() == L'"';
}

Why whyNumber(std::wstring const& data) {
    bool const isRegular =
        data.size() <= 8 && !data.empty() && data.find_first_not_of(hexDigits) == data.npos;
    if (isRegular)
        return std::nullopt;
    wchar_t* end = nullptr;
    auto const number = std::wcstoul(data.c_str(), &end, 16);
    if (end != data.c_str() + data.size())
        return L"not a hexadecimal number: not restored";
    return L"not a number of one to eight digits: becomes " + std::to_wstring(number);
}

bool isHexBytes(std::wstring_view data) {
    for (std::size_t index = 0; index < data.size(); ++index) {
        bool const isComma = index % 3 == 2;
        if (isComma ? data[index] != L',' : std::wcschr(hexDigits, data[index]) == nullptr)
            return false;
    }
    return true;
}

// Whether a list of bytes may have been written in decimal, and is another one in hexadecimal.
bool looksDecimal(std::wstring_view data) {
    if (data.find_first_not_of(L"0123456789,") != data.npos)
        return false;
    for (std::size_t position = 0; position < data.size();) {
        auto const end = std::min(data.find(L',', position), data.size());
        auto const byte = data.substr(position, end - position);
        if (byte.size() != 2 || byte.front() != L'0')
            return true;
        position = end + 1;
    }
    return false;
}

Why whyBytes(std::wstring_view data, bool isBeforeFirstNumber) {
    if (data.size() % 3 == 1)
        return L"the last byte has one digit only: the restore ends here";
    if (isBeforeFirstNumber && looksDecimal(data))
        return L"bytes before the file's first dword are decimal: come back as others";
    if (!data.empty() && !isHexBytes(data))
        return L"not bytes of two digits and commas: come back as others";
    return std::nullopt;
}

// Whether something stands behind the first empty string of a list, which ends it.
bool goesOnBehindItsEnd(std::wstring_view data) {
    constexpr std::size_t unitLength = 6;
    bool wasZero = true;
    for (std::size_t position = 0; position < data.size(); position += unitLength) {
        auto const unit = data.substr(position, unitLength - 1);
        bool const isZero = unit.find_first_not_of(L"0,") == unit.npos;
        if (isZero && wasZero)
            return position + unitLength < data.size();
        wasZero = isZero;
    }
    return false;
}

Why whyList(std::wstring_view data, bool isBeforeFirstNumber) {
    if (data.empty())
        return L"an empty list: not restored";
    if (auto const why = whyBytes(data, isBeforeFirstNumber))
        return why;
    if ((data.size() + 1) / 3 % 2 != 0)
        return L"an odd number of bytes: a zero is added";
    if (goesOnBehindItsEnd(data))
        return L"what stands behind its first empty string is lost";
    return std::nullopt;
}

// How the restore understands what stands behind an equals sign: a word anywhere makes it a type,
// which goes on for one more character. Only what has none of the words is a text.
struct TypedData {
    explicit TypedData(std::wstring const& text) {
        for (auto const* candidate : {L"hex(7)", L"hex", L"dword"}) {
            auto const found = text.find(candidate);
            if (found == text.npos)
                continue;
            word = candidate;
            auto const end = std::min(found + word.size() + 1, text.size());
            type = text.substr(0, end);
            data = text.substr(end);
            return;
        }
    }

    std::wstring word;
    std::wstring type;
    std::wstring data;
};

class Surveyor {
  public:
    explicit Surveyor(std::wstring const& root) : m_root(withoutCase(root)) {}

    void judge(ProfileLine const& line) {
        m_line = &line;
        if (line.isHeader)
            judgeHeader(line.text);
        else
            judgeEntry(line.text);
    }

    DumpSurvey const& survey() const { return m_survey; }

  private:
    void lose(std::wstring const& why) {
        auto const what = m_line->isHeader ? L'[' + m_line->text + L']' : m_line->text;
        m_survey.losses.push_back({m_line->number, shown(what), why});
    }

    void judgeHeader(std::wstring const& name) {
        m_isRead = !name.empty();
        m_sectionUnits = 0;
        if (name.empty())
            return lose(L"an empty header: the lines below it are not read");

        ++m_survey.keys;
        if (isBlank(name.front()) || isBlank(name.back()))
            lose(L"blanks at the ends of the name are lost, and the lines below it");
        judgePlace(name);
        judgeCharacters();
        m_headersUnits += name.size() + 1;
        if (std::exchange(m_headersFit, m_headersUnits <= mostOfHeaders) && !m_headersFit)
            lose(L"more than 8,190 characters of headers: cut, and the rest of the file is lost");
        auto const [first, isNew] = m_headers.emplace(withoutCase(name), m_line->number);
        m_isRead = isNew;
        if (!isNew)
            lose(
                L"the header of line " + std::to_wstring(first->second) +
                L" again: the lines below it are not read");
    }

    // The restore cuts off as many characters as the root has, whatever they are.
    void judgePlace(std::wstring const& name) {
        if (name.size() < m_root.size())
            return lose(L"shorter than the name of the key: the restore ends here");
        auto const subkey = name.substr(m_root.size());
        bool const isOurs =
            beginsWith(withoutCase(name), m_root) && (subkey.empty() || subkey.front() == L'\\');
        if (!isOurs)
            lose(L"not of this tree: is restored into it as \"" + subkey + L'"');
        if (hasLongName(subkey))
            lose(L"a key's name of more than 255 characters: the restore never ends");
    }

    static bool hasLongName(std::wstring_view subkey) {
        for (std::size_t position = 0; position < subkey.size();) {
            auto const end = std::min(subkey.find(L'\\', position), subkey.size());
            if (end - position > longestKeyName)
                return true;
            position = end + 1;
        }
        return false;
    }

    void judgeCharacters() {
        if (!m_line->isByteForByte)
            lose(L"bytes from 80 on that the code page reads as other characters");
    }

    void judgeEntry(std::wstring const& text) {
        if (m_survey.keys == 0 && m_isRead) {
            if (text != openingLine)
                lose(L"stands before the first header: is not read");
            return;
        }
        auto const equals = text.find(L'=');
        m_survey.values += equals != text.npos ? 1 : 0;
        if (m_isRead) {
            judgeLength(text.size());
            judgeCharacters();
            if (auto const why = whyEntry(text, equals))
                lose(*why);
        }
        if (equals != text.npos && TypedData(text.substr(equals + 1)).type == L"dword:")
            m_isBeforeFirstNumber = false;
    }

    void judgeLength(std::size_t units) {
        bool const hasFitted = m_sectionUnits <= mostOfSection;
        m_sectionUnits += units + 1;
        if (hasFitted && m_sectionUnits > mostOfSection)
            lose(L"more than 32,766 characters in the section: cut, and the rest of it is lost");
    }

    Why whyEntry(std::wstring const& text, std::size_t equals) const {
        if (equals == text.npos)
            return L"no equals sign: ignored";
        auto const data = text.substr(equals + 1);
        if (data.empty())
            return L"nothing behind the equals sign: the restore ends here";
        if (!isQuoted(text.substr(0, equals)))
            return L"the name does not stand in quotes: comes back as \"" +
                   shown(text.substr(1, equals - 2)) + L'"';
        return whyData(data);
    }

    Why whyData(std::wstring const& data) const {
        TypedData const typed(data);
        if (typed.type == L"dword:")
            return whyNumber(typed.data);
        if (typed.type == L"hex:")
            return typed.data.empty()
                       ? L"no bytes; there may have been more than 1,024, which are not dumped"
                       : whyBytes(typed.data, m_isBeforeFirstNumber);
        if (typed.type == L"hex(7):")
            return whyList(typed.data, m_isBeforeFirstNumber);
        if (!typed.word.empty() && data.front() == L'"')
            return L"a text that holds \"" + typed.word + L"\": not restored";
        if (!typed.word.empty())
            return L"of an unknown type: not restored";
        if (!isQuoted(data))
            return L"a text not in quotes: its first and its last character are lost";
        return std::nullopt;
    }

    std::wstring m_root;
    DumpSurvey m_survey;
    ProfileLine const* m_line = nullptr;
    // Of each header, the line where it stands first.
    std::unordered_map<std::wstring, std::size_t> m_headers;
    std::size_t m_headersUnits = 0;
    bool m_headersFit = true;
    std::size_t m_sectionUnits = 0;
    bool m_isRead = true;
    bool m_isBeforeFirstNumber = true;
};

} // namespace

DumpSurvey surveyDump(std::vector<char> const& content, std::wstring const& root) {
    Surveyor surveyor(root);
    for (auto const& line : profileLines(content))
        surveyor.judge(line);
    auto survey = surveyor.survey();
    if (survey.keys == 0)
        survey.losses.push_back({1, L"the file", L"has no header: nothing is restored"});
    return survey;
}
