#include "vrUtils/Storage/TempFolder.h"

#include "foundation/Log.h"
#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "storage/FolderStrategies.h"

namespace vrUtils::Storage {

TempFolder::TempFolder(
    vr::Path const& folder, CreateBehaviour createBehaviour, DeleteBehaviour deleteBehaviour,
    std::wstring const& logModule)
    : m_folder(folder),
      m_logModule(logModule),
      m_deleteBehaviour(deleteBehaviour),
      m_createBehaviour(createBehaviour) {
    auto text = m_folder.str();
    auto const* const creator = folderCreator(m_createBehaviour);
    auto const result = creator ? creator->Create(text) : FolderFailed;
    m_created = result == FolderCreated;

    try {
        m_folder = vr::Path::folder(text);
        report(result == FolderFailed);
    } catch (...) {
        // Without an object nothing would ever remove the folder.
        if (m_created)
            RemoveDirectoryW(text.c_str());
        throw;
    }
}

TempFolder::~TempFolder() {
    if (!m_created)
        return;
    try {
        remove();
    } catch (...) {
        // No memory for a path: the folder stays, with what is left in it.
    }
}

bool TempFolder::Created() const { return m_created; }

vr::Path TempFolder::Name() const { return m_folder; }

void TempFolder::report(bool failed) const {
    if (failed)
        logComposed(
            LogLevel::warning, m_logModule,
            composeMessage(L"Unable to create temporary folder \"", m_folder, L'"'));
    else
        logComposed(
            LogLevel::trace, m_logModule,
            composeMessage(
                m_created ? L"Created temporary folder \"" : L"Using temporary folder \"", m_folder,
                L'"'));
}

void TempFolder::remove() const {
    auto const* const deleter = folderDeleter(m_deleteBehaviour);
    if (!deleter || !deleter->Delete(m_folder.components().wholePath()))
        logComposed(
            LogLevel::warning, m_logModule,
            composeMessage(L"Unable to delete temp folder \"", m_folder, L'"'));
}

} // namespace vrUtils::Storage
