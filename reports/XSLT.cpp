#include "vrUtils/XSLT.h"

#include "foundation/Handle.h"
#include "reports/XmlDocument.h"

#include <new>

namespace vrUtils::XSLT {

namespace {

HRESULT read(XmlDocument& document, std::wstring const& path) {
    auto const code = document.create();
    return FAILED(code) ? code : document.load(path);
}

// What the code page lacks becomes the system's own default character.
std::string toAnsi(ComText const& text) {
    auto const units = static_cast<int>(text.size());
    if (units == 0)
        return {};
    auto const convert = [&](char* bytes, int room) {
        auto const length =
            WideCharToMultiByte(CP_ACP, 0, text.c_str(), units, bytes, room, nullptr, nullptr);
        // Zero says that it failed, of the question for the length too.
        if (length <= 0)
            throw std::bad_alloc();
        return length;
    };
    std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

HRESULT transform(
    XmlDocument& xml, std::wstring const& xmlPath, XmlDocument& stylesheet,
    std::wstring const& xslPath, std::string& result) {
    auto code = read(xml, xmlPath);
    if (FAILED(code))
        return code;
    code = read(stylesheet, xslPath);
    if (FAILED(code))
        return code;

    ComText text;
    code = xml.get()->transformNode(stylesheet.get(), text.receive());
    if (FAILED(code))
        return code;
    // Not every component refuses to transform what it could not read.
    if (xml.rejected() || stylesheet.rejected())
        return E_FAIL;
    result = toAnsi(text);
    return code;
}

ModuleOwner componentModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(0, L"msxml6.dll", &module);
    return ModuleOwner(module);
}

} // namespace

std::int32_t
XSLTtoString(std::wstring const& xmlPath, std::wstring const& xslPath, std::string* result) {
    // The documents are released after COM is left, the stylesheet first; their code must be there
    // until then.
    ModuleOwner component;
    XmlDocument xml;
    XmlDocument stylesheet;

    // Fails in an apartment of the other kind, which serves as well and is not ours to leave.
    auto const entered = SUCCEEDED(CoInitialize(nullptr));
    auto const code = transform(xml, xmlPath, stylesheet, xslPath, *result);
    component = componentModule();
    if (entered)
        CoUninitialize();
    return FAILED(code) ? TransformFailed : code;
}

} // namespace vrUtils::XSLT
