// The audio format of a file from its first bytes. A host reads as much of the head as it likes and
// tries the parser that fits the file's kind; what is no sound file says so by a failure.

#include <vrUtils/Parsing.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// 48,000 samples a second of 24 bits, and the first of them.
Bytes wavHead() {
    return {'R', 'I', 'F', 'F', 44,  0,   0,   0,   'W',  'A',  'V', 'E', 'f',  'm',  't', ' ',
            16,  0,   0,   0,   1,   0,   1,   0,   0x80, 0xBB, 0,   0,   0x80, 0x32, 2,   0,
            3,   0,   24,  0,   'd', 'a', 't', 'a', 3,    0,    0,   0,   1,    2,    3};
}

template <typename Parser>
void print(Bytes const& head) {
    Parser parser(head.data(), static_cast<std::uint32_t>(head.size()));
    parser.Parse();
    std::wcout << parser.GetSamplesPerSecond() << L" Hz, " << parser.GetBitsPerSample()
               << L" bits\n";
}

void printFormat(Bytes const& head) {
    try {
        if (!head.empty() && head.front() == 'F')
            print<vrUtils::Parsing::AIFParser>(head);
        else
            print<vrUtils::Parsing::WavParser>(head);
    } catch (vrException const& failure) {
        std::wcout << L"no format: " << failure.message() << L'\n';
    }
}

} // namespace

int main() {
    auto const head = wavHead();
    printFormat(head);
    // A head that was cut, one of another kind, and none at all.
    printFormat({head.begin(), head.begin() + 24});
    std::string const text = "RIFX, or anything";
    printFormat({text.begin(), text.end()});
    printFormat({});

    vrUtils::Parsing::WavParser parser(head.data(), static_cast<std::uint32_t>(head.size()));
    try {
        parser.GetSamplesPerSecond();
        return 1;
    } catch (vrUnsetValueException const&) {
        std::wcout << L"nothing is known ahead of Parse\n";
    }
    return 0;
}
