// A host as somebody writes it who has the package and nothing else of the project.

#include <vrUtils/vrUtils.h>

#include <json/json.h>

#include <iostream>

int main() {
    auto const clip = vr::Path::file(L"server", L"share/Media", L"clip.mxf");
    std::wcout << clip << L'\n';

    auto& stats = vrStatCollector::Singleton();
    stats.AddStat(0x10000, 1500u);
    Json::Value members;
    auto const text = stats.asJson();
    if (!Json::Reader().parse(std::string(text.begin(), text.end()), members))
        return 1;
    std::wcout << L"BytesRead " << members["BytesRead"].asUInt() << L'\n';

    try {
        vrUtils::Files::FileLength(vr::Path::file(L"C:\\nothing here"));
    } catch (vrException const& failure) {
        std::wcout << failure.message() << L'\n';
        return 0;
    }
    return 1;
}
