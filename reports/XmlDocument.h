#ifndef REPORTS_XMLDOCUMENT_H
#define REPORTS_XMLDOCUMENT_H

#include "foundation/Platform.h"

#include <memory>
#include <string>

#include <msxml2.h>

namespace vrUtils::XSLT {

// A document of the platform's XML component, released when it goes. What the component answers
// goes out as it came, in the form of its result codes.
class XmlDocument {
  public:
    // Makes the document, set to be read at once and by itself: no validation, no other files.
    HRESULT create();

    // Reads a file. One that the parser rejects is logged and is no failure.
    HRESULT load(std::wstring const& path);

    // Whether the parser rejected the file.
    bool rejected() const noexcept { return m_rejected; }

    IXMLDOMDocument* get() const noexcept { return m_document.get(); }

  private:
    struct Release {
        void operator()(IUnknown* object) const noexcept { object->Release(); }
    };

    HRESULT reportRejection(std::wstring const& path);

    std::unique_ptr<IXMLDOMDocument, Release> m_document;
    bool m_rejected = false;
};

// Owns a text of COM; null counts as empty.
class ComText {
  public:
    ComText() noexcept = default;

    ComText(ComText const&) = delete;
    ComText& operator=(ComText const&) = delete;

    ~ComText() { SysFreeString(m_text); }

    BSTR* receive() noexcept { return &m_text; }

    wchar_t const* c_str() const noexcept { return m_text ? m_text : L""; }

    std::size_t size() const noexcept { return SysStringLen(m_text); }

  private:
    BSTR m_text = nullptr;
};

} // namespace vrUtils::XSLT

#endif
