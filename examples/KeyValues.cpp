// A job as a small dictionary: each value has a type, a read names the type it expects, and nothing
// is converted on the way. A store is copied by assignment, and the two then go their own ways.

#include <vrUtils/KeyValue.h>

#include <iostream>
#include <string>

using namespace vrUtils::KeyValue;

namespace {

void print(vrKeyValues const& job, std::wstring const& key) {
    try {
        auto const text = job.GetStringValue(key);
        std::wcout << key << L": " << text << L'\n';
    } catch (KeyValueWrongTypeException const&) {
        std::wcout << key << L" is no text but " << job.TypeName(key) << L'\n';
    } catch (KeyValueNotPresentException const&) {
        std::wcout << key << L" is not given\n";
    }
}

} // namespace

int main() {
    vrKeyValues job;
    job.Set(L"clip", L"clip1.mxf");
    job.Set(L"frames", 1500u);
    job.Set(L"replace", true);

    print(job, L"clip");
    print(job, L"frames");
    print(job, L"Clip"); // case counts

    try {
        auto const seconds = job.GetUint32Value(L"frames") / 25;
        std::wcout << L"lasts " << seconds << L" seconds, "
                   << (job.GetBoolValue(L"replace") ? L"replaces\n" : L"keeps\n");
    } catch (vrException const&) {
        return 1; // both failures are vrExceptions; they carry no text
    }

    vrKeyValues retry;
    retry = job;
    retry.Set(L"clip", L"clip1-again.mxf");
    retry.Remove(L"replace");
    print(job, L"clip");
    print(retry, L"clip");
    print(retry, L"frames"); // came with the rest
    print(retry, L"replace");
    return retry.Contains(L"replace") ? 1 : 0;
}
