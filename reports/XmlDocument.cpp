#include "reports/XmlDocument.h"

#include "foundation/Log.h"

namespace vrUtils::XSLT {

namespace {

// The component of version 6, whose header is not everywhere.
constexpr CLSID domDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};

// A text on its way into a call of COM.
class TextArgument {
  public:
    explicit TextArgument(std::wstring const& text) {
        m_value.vt = VT_BSTR;
        m_value.bstrVal = SysAllocString(text.c_str());
    }

    TextArgument(TextArgument const&) = delete;
    TextArgument& operator=(TextArgument const&) = delete;

    ~TextArgument() { VariantClear(&m_value); }

    explicit operator bool() const noexcept { return m_value.bstrVal != nullptr; }

    VARIANT const& get() const noexcept { return m_value; }

  private:
    VARIANT m_value{};
};

} // namespace

HRESULT XmlDocument::create() {
    void* document = nullptr;
    auto const code = CoCreateInstance(
        domDocument60, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument, &document);
    if (FAILED(code))
        return code;
    m_document.reset(static_cast<IXMLDOMDocument*>(document));
    // Whether it takes them is not looked at.
    m_document->put_async(VARIANT_FALSE);
    m_document->put_validateOnParse(VARIANT_FALSE);
    m_document->put_resolveExternals(VARIANT_FALSE);
    return code;
}

HRESULT XmlDocument::load(std::wstring const& path) {
    TextArgument const argument(path);
    if (!argument)
        return E_OUTOFMEMORY;
    VARIANT_BOOL accepted = VARIANT_FALSE;
    auto const code = m_document->load(argument.get(), &accepted);
    if (FAILED(code) || accepted == VARIANT_TRUE)
        return code;
    m_rejected = true;
    return reportRejection(path);
}

HRESULT XmlDocument::reportRejection(std::wstring const& path) {
    IXMLDOMParseError* received = nullptr;
    auto code = m_document->get_parseError(&received);
    if (FAILED(code))
        return code;
    std::unique_ptr<IXMLDOMParseError, Release> const error(received);
    ComText reason;
    code = error->get_reason(reason.receive());
    if (FAILED(code))
        return code;
    // No more than a trace: the caller has the code.
    VL_WriteLog(
        LogLevel::trace, logModule, L"XSLT transform failed : %s\n%s", path.c_str(),
        reason.c_str());
    return code;
}

} // namespace vrUtils::XSLT
