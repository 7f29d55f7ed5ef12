#include "tools/vrtool/Facts.h"

#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>
#include <utility>

namespace {

std::wstring listOf(Json::Value const& texts) {
    std::wstring list;
    for (auto const& text : texts)
        list += (list.empty() ? L"" : L", ") + fromUtf8(text.asString());
    return list;
}

std::wstring cell(Json::Value const& value) {
    if (value.isBool())
        return value.asBool() ? L"yes" : L"no";
    if (value.empty() && (value.isNull() || value.isArray()))
        return L"-";
    return value.isArray() ? listOf(value) : fromUtf8(value.asString());
}

} // namespace

bool hasFailure(Facts const& facts) {
    return std::any_of(
        facts.begin(), facts.end(), [](Fact const& fact) { return !fact.failure.empty(); });
}

std::string tableOf(Facts const& facts, std::optional<std::size_t> width) {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    std::vector<TextTable::Column> columns{{L"WHAT"}, {L"VALUE", Align::left, Narrow::wrap}};
    bool const withFailures = hasFailure(facts);
    if (withFailures)
        columns.push_back({L"FAILURE", Align::left, Narrow::ownLine});

    TextTable table(std::move(columns));
    for (auto const& fact : facts) {
        std::vector<std::wstring> cells{fromUtf8(fact.name), cell(fact.value)};
        if (withFailures)
            cells.push_back(fact.failure);
        table.addRow(std::move(cells));
    }
    return table.text(width);
}

Json::Value objectOf(Facts const& facts) {
    Json::Value object;
    for (auto const& fact : facts)
        object[fact.name] = fact.value;
    return object;
}

Json::Value objectWithFailures(Facts const& facts) {
    auto document = objectOf(facts);
    document["failures"] = Json::Value(Json::objectValue);
    for (auto const& fact : facts)
        if (!fact.failure.empty())
            document["failures"][fact.name] = toUtf8(fact.failure);
    return document;
}

std::string jsonOf(Facts const& facts) { return jsonText(objectWithFailures(facts)); }
