#include "vrUtils/Storage/RecoverableFileDeleter.h"

#include "foundation/Platform.h"
#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/Storage/TempFolder.h"

namespace vrUtils::Storage {

class RecoverableFileDeleter::Implementation {
  public:
    Implementation(vr::Path const& file, std::wstring logModule)
        : m_logModule(std::move(logModule)), m_file(file) {}

    void Delete();
    void Recover();

  private:
    vr::Path folder() const;
    std::wstring copy() const;

    std::wstring m_logModule;
    vr::Path m_file;
    std::unique_ptr<TempFolder> m_recoveryFolder;
};

void RecoverableFileDeleter::Implementation::Delete() {
    // Made before the earlier one goes. Whether it could be made shows at the copy.
    m_recoveryFolder =
        std::make_unique<TempFolder>(folder(), UseExisting, DeleteAlways, m_logModule);
    auto const file = m_file.str();
    auto const target = copy();
    if (!CopyFileW(file.c_str(), target.c_str(), FALSE)) {
        auto const error = GetLastError();
        throw vrCopyFileException(error, target);
    }
    if (!DeleteFileW(file.c_str())) {
        auto const error = GetLastError();
        throw vrDeleteFileException(error, file);
    }
}

void RecoverableFileDeleter::Implementation::Recover() {
    auto const source = copy();
    auto const file = m_file.str();
    if (!CopyFileW(source.c_str(), file.c_str(), FALSE)) {
        auto const error = GetLastError();
        throw vrCopyFileException(error, file);
    }
}

vr::Path RecoverableFileDeleter::Implementation::folder() const {
    vr::Path folder(m_file.components().folderPath(), vr::Path::eDetect);
    folder.modify(vr::Path::eDetect).append(L"Recovery\\");
    return folder;
}

std::wstring RecoverableFileDeleter::Implementation::copy() const {
    auto copy = folder();
    copy.modify(vr::Path::eDetect).append(m_file.components().fullName());
    return copy.str();
}

RecoverableFileDeleter::RecoverableFileDeleter(vr::Path const& file, std::wstring logModule)
    : m_implementation(std::make_unique<Implementation>(file, std::move(logModule))) {}

RecoverableFileDeleter::~RecoverableFileDeleter() = default;

void RecoverableFileDeleter::Delete() { m_implementation->Delete(); }

void RecoverableFileDeleter::Recover() { m_implementation->Recover(); }

} // namespace vrUtils::Storage
