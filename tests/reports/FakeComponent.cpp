#include "tests/reports/FakeComponent.h"

#include "tests/support/ImportHook.h"

#include <cwchar>
#include <set>

// The interfaces as tables of functions: a fake fills in the few that are called, and whatever else
// is called ends the test.
#define CINTERFACE
#include <msxml2.h>

namespace test {

namespace {

template <typename Interface>
struct FakeObject {
    Interface face;
    FakeComponent::Hooks* hooks;
    std::string name;

    static FakeObject& of(Interface* face) { return *reinterpret_cast<FakeObject*>(face); }
};

using FakeDocument = FakeObject<IXMLDOMDocument>;
using FakeError = FakeObject<IXMLDOMParseError>;

} // namespace

// Stands in for what the library imports, and keeps account of it.
class FakeComponent::Hooks {
  public:
    explicit Hooks(FakeComponent& component) : m_component(component) {}

    HRESULT note(std::string const& call) {
        calls.push_back(call);
        auto const answer = m_component.answers.find(call);
        return answer == m_component.answers.end() ? S_OK : answer->second;
    }

    void lend(void const* thing) { m_lent.insert(thing); }

    void takeBack(void const* thing) {
        if (thing && m_lent.erase(thing) == 0)
            ++releasedTwice;
    }

    std::size_t lent() const { return m_lent.size(); }

    HRESULT load(std::string const& document, VARIANT const& source, VARIANT_BOOL* accepted) {
        loads.push_back({source.vt, source.bstrVal});
        auto const flag = m_component.flags.find(document);
        *accepted = flag == m_component.flags.end() ? VARIANT_TRUE : flag->second;
        return note(document + ".load");
    }

    HRESULT giveText(std::string const& call, std::optional<std::wstring> const& text, BSTR* out) {
        auto const result = note(call);
        if (FAILED(result) || !text)
            return result;
        *out = SysAllocStringLen(text->data(), static_cast<UINT>(text->size()));
        lend(*out);
        return result;
    }

    HRESULT giveReason(std::string const& error, BSTR* out) {
        return giveText(error + ".get_reason", m_component.reason, out);
    }

    HRESULT giveError(std::string const& document, IXMLDOMParseError** out);

    HRESULT transform(std::string const& document, IXMLDOMNode* stylesheet, BSTR* out) {
        auto const& name = FakeDocument::of(reinterpret_cast<IXMLDOMDocument*>(stylesheet)).name;
        return giveText(document + ".transformNode(" + name + ")", m_component.output, out);
    }

    std::vector<std::string> calls;
    std::vector<Creation> creations;
    std::vector<LoadArgument> loads;
    std::size_t releasedTwice = 0;

  private:
    HRESULT
    create(CLSID const& component, bool aggregated, DWORD context, IID const& face, void** out);

    BSTR makeText(OLECHAR const* text) {
        if (++m_texts == m_component.failingText)
            return nullptr;
        auto* const made = m_allocate.original()(text);
        lend(made);
        return made;
    }

    FakeComponent& m_component;
    std::set<void const*> m_lent;
    unsigned m_texts = 0;
    std::vector<std::unique_ptr<FakeDocument>> m_documents;
    std::vector<std::unique_ptr<FakeError>> m_errors;

    ImportHook<HRESULT(LPVOID)> m_enter{
        "CoInitialize", [this](LPVOID reserved) {
            return note(reserved ? "CoInitialize of what?" : "CoInitialize");
        }};
    ImportHook<void()> m_leave{"CoUninitialize", [this] { note("CoUninitialize"); }};
    ImportHook<HRESULT(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID*)> m_create{
        "CoCreateInstance",
        [this](REFCLSID component, LPUNKNOWN outer, DWORD context, REFIID face, LPVOID* out) {
            return create(component, outer != nullptr, context, face, out);
        }};
    ImportHook<BSTR(OLECHAR const*)> m_allocate{
        "SysAllocString", [this](OLECHAR const* text) { return makeText(text); }};
    ImportHook<void(BSTR)> m_free{"SysFreeString", [this](BSTR text) {
                                      takeBack(text);
                                      m_free.original()(text);
                                  }};
    ImportHook<HRESULT(VARIANTARG*)> m_clear{"VariantClear", [this](VARIANTARG* argument) {
                                                 takeBack(argument->bstrVal);
                                                 return m_clear.original()(argument);
                                             }};
    // A module that is there stands for the component's.
    ImportHook<decltype(GetModuleHandleExW)> m_hold{
        "GetModuleHandleExW", [this](DWORD how, LPCWSTR name, HMODULE* module) {
            if (how != 0 || std::wcscmp(name, L"msxml6.dll") != 0)
                return m_hold.original()(how, name, module);
            *module = thisProgram();
            return SUCCEEDED(note("hold")) ? TRUE : FALSE;
        }};
    ImportHook<decltype(FreeLibrary)> m_drop{"FreeLibrary", [this](HMODULE module) {
                                                 if (module != thisProgram())
                                                     return m_drop.original()(module);
                                                 note("drop");
                                                 return TRUE;
                                             }};
};

namespace {

template <typename Interface>
ULONG WINAPI release(Interface* face) {
    auto& object = FakeObject<Interface>::of(face);
    object.hooks->note(object.name + ".Release");
    object.hooks->takeBack(&object);
    return 0;
}

std::string option(char const* name, VARIANT_BOOL value) {
    return std::string(".") + name + '(' + std::to_string(value) + ')';
}

IXMLDOMParseErrorVtbl errorFunctions() {
    IXMLDOMParseErrorVtbl functions{};
    functions.Release = release<IXMLDOMParseError>;
    functions.get_reason = [](IXMLDOMParseError* face, BSTR* out) {
        auto const& error = FakeError::of(face);
        return error.hooks->giveReason(error.name, out);
    };
    return functions;
}

IXMLDOMDocumentVtbl documentFunctions() {
    IXMLDOMDocumentVtbl functions{};
    functions.Release = release<IXMLDOMDocument>;
    functions.put_async = [](IXMLDOMDocument* face, VARIANT_BOOL value) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->note(document.name + option("put_async", value));
    };
    functions.put_validateOnParse = [](IXMLDOMDocument* face, VARIANT_BOOL value) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->note(document.name + option("put_validateOnParse", value));
    };
    functions.put_resolveExternals = [](IXMLDOMDocument* face, VARIANT_BOOL value) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->note(document.name + option("put_resolveExternals", value));
    };
    functions.load = [](IXMLDOMDocument* face, VARIANT source, VARIANT_BOOL* accepted) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->load(document.name, source, accepted);
    };
    functions.get_parseError = [](IXMLDOMDocument* face, IXMLDOMParseError** out) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->giveError(document.name, out);
    };
    functions.transformNode = [](IXMLDOMDocument* face, IXMLDOMNode* stylesheet, BSTR* out) {
        auto const& document = FakeDocument::of(face);
        return document.hooks->transform(document.name, stylesheet, out);
    };
    return functions;
}

} // namespace

HRESULT FakeComponent::Hooks::create(
    CLSID const& component, bool aggregated, DWORD context, IID const& face, void** out) {
    static auto functions = documentFunctions();
    std::string const name = creations.empty() ? "xml" : "stylesheet";
    creations.push_back({component, aggregated, context, face});
    auto const result = note(name + ".create");
    if (FAILED(result))
        return result;
    m_documents.push_back(std::make_unique<FakeDocument>(FakeDocument{{&functions}, this, name}));
    lend(m_documents.back().get());
    *out = m_documents.back().get();
    return result;
}

HRESULT FakeComponent::Hooks::giveError(std::string const& document, IXMLDOMParseError** out) {
    static auto functions = errorFunctions();
    auto const result = note(document + ".get_parseError");
    if (FAILED(result))
        return result;
    m_errors.push_back(
        std::make_unique<FakeError>(FakeError{{&functions}, this, document + ".error"}));
    lend(m_errors.back().get());
    *out = &m_errors.back()->face;
    return result;
}

FakeComponent::FakeComponent() : m_hooks(std::make_unique<Hooks>(*this)) {}

FakeComponent::~FakeComponent() = default;

std::vector<std::string> const& FakeComponent::calls() const { return m_hooks->calls; }

std::vector<Creation> const& FakeComponent::creations() const { return m_hooks->creations; }

std::vector<LoadArgument> const& FakeComponent::loads() const { return m_hooks->loads; }

std::size_t FakeComponent::unreleased() const { return m_hooks->lent(); }

std::size_t FakeComponent::releasedTwice() const { return m_hooks->releasedTwice; }

} // namespace test
