#ifndef TOOLS_VRTOOL_JSONTEXT_H
#define TOOLS_VRTOOL_JSONTEXT_H

#include <json/json.h>

#include <string>

// A document as this program prints it: UTF-8, two blanks a level, a line feed at the end.
std::string jsonText(Json::Value const& document);

#endif
