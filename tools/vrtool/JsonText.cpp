#include "tools/vrtool/JsonText.h"

std::string jsonText(Json::Value const& document) {
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "  ";
    writer["emitUTF8"] = true;
    return Json::writeString(writer, document) + '\n';
}
