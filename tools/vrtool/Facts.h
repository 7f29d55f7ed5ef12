#ifndef TOOLS_VRTOOL_FACTS_H
#define TOOLS_VRTOOL_FACTS_H

#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/vrException.h"

#include <json/json.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// One thing that is known of the subject, or why it is not.
struct Fact {
    char const* name;
    // A text, a number, yes or no, or an array of texts; null is what does not apply or is not
    // known.
    Json::Value value;
    std::wstring failure = {};
};

// In the order in which they are shown.
using Facts = std::vector<Fact>;

// What a function of the library tells, or the text of its failure.
template <typename Find>
Fact findFact(char const* name, Find const& result) {
    try {
        return {name, result()};
    } catch (vrException const& failure) {
        return {name, {}, failure.message()};
    } catch (vrUtils::Storage::vrStorageException const& failure) {
        return {name, {}, failure.text()};
    }
}

bool hasFailure(Facts const& facts);

// A row for each, with a column for the failures if there are any.
std::string tableOf(Facts const& facts, std::optional<std::size_t> width);

// An object with a member for each.
Json::Value objectOf(Facts const& facts);

// The same with `failures`, an object of the failures under the names of what is not known.
Json::Value objectWithFailures(Facts const& facts);

// That object as this program prints it.
std::string jsonOf(Facts const& facts);

#endif
