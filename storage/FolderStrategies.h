#ifndef STORAGE_FOLDERSTRATEGIES_H
#define STORAGE_FOLDERSTRATEGIES_H

#include "vrUtils/Storage/TempFolder.h"

#include <cstdint>
#include <string>

namespace vrUtils::Storage {

enum FolderCreateResult : std::int32_t {
    FolderCreated = 0,
    FolderExisted = 1,
    FolderFailed = 2,
};

// Ways to make a folder. They keep no state; one object of each serves the whole process.
class FolderCreator {
  public:
    FolderCreator() = default;
    FolderCreator(FolderCreator const&) = delete;
    FolderCreator& operator=(FolderCreator const&) = delete;
    virtual ~FolderCreator() = default;

    // Makes the folder. The text then holds its final name, is empty if the folder was there and is
    // not the caller's, and is as it was after a failure, whose reason GetLastError still tells.
    virtual FolderCreateResult Create(std::wstring& text) const = 0;
};

// A folder that exists is as good as a new one. So is a file of that name: the platform does not
// tell them apart.
class FolderCreatorUseExisting final : public FolderCreator {
  public:
    FolderCreateResult Create(std::wstring& text) const override;
};

// Beside a folder that exists, a numbered one is made: `work.01\`, `work.02\`, up to `work.100\`.
class FolderCreatorNewNameIfExists final : public FolderCreator {
  public:
    FolderCreateResult Create(std::wstring& text) const override;
};

// Ways to remove a folder; true on success. They keep no state either.
class FolderDeleter {
  public:
    FolderDeleter() = default;
    FolderDeleter(FolderDeleter const&) = delete;
    FolderDeleter& operator=(FolderDeleter const&) = delete;
    virtual ~FolderDeleter() = default;

    virtual bool Delete(std::wstring const& text) const = 0;
};

class FolderDeleterIfEmpty final : public FolderDeleter {
  public:
    bool Delete(std::wstring const& text) const override;
};

class FolderDeleterAlways final : public FolderDeleter {
  public:
    bool Delete(std::wstring const& text) const override;
};

// What a behaviour stands for; null for a value that has no name.
FolderCreator const* folderCreator(CreateBehaviour behaviour);
FolderDeleter const* folderDeleter(DeleteBehaviour behaviour);

} // namespace vrUtils::Storage

#endif
