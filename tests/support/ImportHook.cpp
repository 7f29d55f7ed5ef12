#include "tests/support/ImportHook.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <vector>

namespace test {

namespace {

std::mutex patchMutex;

// Oldest first.
std::vector<ImportPatch*>& livePatches() {
    static std::vector<ImportPatch*> patches;
    return patches;
}

template <typename Type>
Type* at(HMODULE module, std::uint64_t offset) {
    return reinterpret_cast<Type*>(reinterpret_cast<std::byte*>(module) + offset);
}

// Where the module keeps the addresses of the functions of this name that it imports.
std::vector<ImportPatch::Function*> placesOf(std::string const& import, HMODULE module) {
    auto const headerOffset = static_cast<DWORD>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    auto const* const header = at<IMAGE_NT_HEADERS>(module, headerOffset);
    auto const& directory = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];

    std::vector<ImportPatch::Function*> places;
    auto const* source = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
    for (; source->Name; ++source) {
        auto const* name = at<IMAGE_THUNK_DATA>(module, source->OriginalFirstThunk);
        auto* place = at<ImportPatch::Function>(module, source->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++place) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) &&
                import == at<IMAGE_IMPORT_BY_NAME>(module, name->u1.AddressOfData)->Name)
                places.push_back(place);
        }
    }
    return places;
}

ImportPatch::Function* placeOf(std::string const& import, HMODULE module) {
    auto const places = placesOf(import, module);
    if (places.size() != 1)
        throw std::runtime_error(
            "the module imports " + std::to_string(places.size()) + " functions named " + import);
    return places.front();
}

void write(ImportPatch::Function* place, ImportPatch::Function function) {
    DWORD protection = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection))
        throw std::runtime_error("an import cannot be written");
    *place = function;
    VirtualProtect(place, sizeof *place, protection, &protection);
}

} // namespace

HMODULE moduleUnderTest() {
    HMODULE const library = GetModuleHandleW(L"vrUtils.dll");
    return library ? library : thisProgram();
}

HMODULE thisProgram() { return GetModuleHandleW(nullptr); }

HMODULE loadedModule(std::wstring const& name) {
    HMODULE const module = GetModuleHandleW(name.c_str());
    if (!module)
        throw std::runtime_error("a module to be hooked is not loaded");
    return module;
}

bool hasImport(std::string const& import, HMODULE module) {
    return !placesOf(import, module).empty();
}

ImportPatch::ImportPatch(std::string const& import, Function replacement, HMODULE module)
    : m_place(placeOf(import, module)), m_replacement(replacement) {
    std::lock_guard const lock(patchMutex);
    m_original = *m_place;
    livePatches().push_back(this);
    write(m_place, m_replacement);
}

ImportPatch::~ImportPatch() {
    std::lock_guard const lock(patchMutex);
    auto& patches = livePatches();
    auto const younger = patches.erase(std::find(patches.begin(), patches.end(), this));

    // What was put on top of this patch takes over what this patch replaced.
    auto const above = std::find_if(younger, patches.end(), [this](ImportPatch const* patch) {
        return patch->m_place == m_place;
    });
    if (above != patches.end())
        (*above)->m_original = m_original;
    else
        write(m_place, m_original);
}

} // namespace test
