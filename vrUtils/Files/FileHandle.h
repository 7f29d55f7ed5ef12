#ifndef VRUTILS_FILES_FILEHANDLE_H
#define VRUTILS_FILES_FILEHANDLE_H

/// @file
/// Scope-bound file handles, one class for each way to open a file.

#include "vrUtils/Path.h"

#include <cstdint>

namespace vrUtils::Files {

/// An open file that closes when its scope ends. Reading and writing are done by the caller, on
/// the value that `Handle` returns.
///
/// | class                          | to             | sharing | existing file | missing file |
/// |--------------------------------|----------------|---------|---------------|--------------|
/// | `FileHandleRead`               | read           | read    | kept          | failure      |
/// | `FileHandleWriteNew`           | write          | read    | **emptied**   | made         |
/// | `FileHandleWriteExisting`      | write          | read    | kept          | failure      |
/// | `FileHandleWriteNewOrExisting` | write          | read    | kept          | made         |
/// | `FileHandleWriteExclusive`     | read and write | none    | **emptied**   | made         |
///
/// Readers let others read and nothing else, so a file that is open for writing cannot be opened by
/// `FileHandleRead`.
///
/// **Copies share the handle.** Copying and assigning take the handle's value as it stands, without
/// duplicating it, and assigning does not close what the target held. Once one of two objects that
/// share a value has closed it, the other holds a stale one, which the platform may by then have
/// given to another file. Do not let both close.
///
/// An object belongs to one thread at a time.
///
/// @code
/// vrUtils::Files::FileHandleRead file;
/// file.Open(path);
/// ReadFile(file.Handle(), ...);
/// @endcode
class VRUTILS_API FileHandle {
  public:
    /// Nothing is open.
    FileHandle();
    /// Shares the handle's value; see above.
    FileHandle(FileHandle const&);
    /// Takes the handle's value; what this object held stays open.
    FileHandle& operator=(FileHandle const&);

    /// Closes.
    virtual ~FileHandle();

    /// Opens the file in the way of the class. A file that was open before stays open, its handle
    /// lost: close first.
    /// @throws vrException "Unable to open file " and the path; nothing is open then
    void Open(vr::Path const& path);

    /// Closes the file; does nothing if none is open. Failures are not reported.
    void Close();

    /// The platform's handle, or its invalid value (all bits set) when nothing is open. This object
    /// goes on owning it.
    void* Handle() const { return m_handle; }

  protected:
    /// The rights that the platform is asked for.
    virtual std::uint32_t Access() const = 0;
    /// What others may do with the file meanwhile, in the platform's numbers.
    virtual std::uint32_t ShareMode() const = 0;
    /// What to make of a file that is there and of one that is missing, in the platform's numbers.
    virtual std::uint32_t CreationDisposition() const = 0;

  private:
    void* m_handle;
};

/// Opens an existing file to read; others may read.
class VRUTILS_API FileHandleRead : public FileHandle {
  protected:
    std::uint32_t Access() const override;
    std::uint32_t ShareMode() const override;
    std::uint32_t CreationDisposition() const override;
};

/// What the writing classes have in common: others may read.
class VRUTILS_API FileHandleWrite : public FileHandle {
  protected:
    std::uint32_t Access() const override;
    std::uint32_t ShareMode() const override;
};

/// Makes a file to write. In spite of the name an existing file is no failure: it is emptied.
class VRUTILS_API FileHandleWriteNew : public FileHandleWrite {
  protected:
    std::uint32_t CreationDisposition() const override;
};

/// Opens an existing file to write, its content kept.
class VRUTILS_API FileHandleWriteExisting : public FileHandleWrite {
  protected:
    std::uint32_t CreationDisposition() const override;
};

/// Opens a file to write, its content kept, or makes it.
class VRUTILS_API FileHandleWriteNewOrExisting : public FileHandleWrite {
  protected:
    std::uint32_t CreationDisposition() const override;
};

/// Makes a file to read and write that nobody else can open meanwhile, from this process or any
/// other. In spite of its base an existing file is emptied.
class VRUTILS_API FileHandleWriteExclusive : public FileHandleWriteNewOrExisting {
  private:
    std::uint32_t Access() const override;
    std::uint32_t ShareMode() const override;
    std::uint32_t CreationDisposition() const override;
};

} // namespace vrUtils::Files

#endif
