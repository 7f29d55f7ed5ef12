#ifndef VRUTILS_PATH_H
#define VRUTILS_PATH_H

/// @file
/// The paths that the whole library takes and gives.
///
/// `vr::PathCreator` joins pieces of text with one backslash between them. `vr::PathSplitter` takes
/// a text apart into network root, drive, folders, name and extension. `vr::Path` is the value made
/// of both: it is entered in whatever form a caller has and read back in one normal form, which is
/// its root, drive, folders, name and extension written one after the other:
///
/// | text as entered        | type    | root       | drive | folders      | name   | extension |
/// |------------------------|---------|------------|-------|--------------|--------|-----------|
/// | `C:/Media/clip.mxf`    | eFile   |            | `C:\` | `Media\`     | `clip` | `.mxf`    |
/// | `\\server\share\a.mxf` | eFile   | `\\server\`|       | `share\`     | `a`    | `.mxf`    |
/// | `\\server`             | any     | `\\server\`|       |              |        |           |
/// | `C:\Media\day.1\`      | eFolder |            | `C:\` | `Media\day.1\` |      |           |
/// | `C:\Media\day.1`       | eFolder |            | `C:\` | `Media\`     | `day.1`|           |
/// | `C:clip.mxf`           | eFile   |            |       | `C:\`        | `clip` | `.mxf`    |
///
/// There is no limit of length and no validation: a path is text, and every text parses. Nothing
/// here touches a disk, and nothing throws but a failed allocation (`std::bad_alloc`).
///
/// One object is for one thread at a time. A `vr::Path` keeps its parse once it is needed, through
/// const operations too; only after that may several threads read it.

#include "vrUtils/vrUtilsApi.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <list>
#include <memory>
#include <string>
#include <string_view>

namespace vr {

/// A text that grows piece by piece, one backslash between the pieces whatever separators they
/// bring along.
///
/// The wide-string forms read a text up to its first zero character, as the pointer forms do. No
/// pointer may be null unless it is said. A piece may be the builder's own text.
///
/// @code
/// vr::PathCreator path(L"C:/Media");
/// path.append(L"/Clips/").append(L"a.mxf"); // C:\Media\Clips\a.mxf
/// @endcode
class VRUTILS_API PathCreator {
  public:
    /// An empty text.
    PathCreator();

    /// `append` of the text to an empty builder.
    PathCreator(std::wstring const& text);
    /// As above.
    PathCreator(wchar_t const* text);

    /// Two backslashes and the host, then `append` of folder and name, then `appendRaw` of the
    /// extension, which carries its own dot.
    /// @param host host name; slashes and then white space are trimmed off its ends, and if nothing
    ///        is left there is no host part
    /// @param folder not null
    /// @param name may be null: no name
    /// @param extension may be null: no extension
    PathCreator(
        std::wstring const& host, wchar_t const* folder, wchar_t const* name,
        wchar_t const* extension);

    /// Copies take the text as it stands, without normalising it.
    PathCreator(PathCreator const&);
    /// As above, taking the source's text away.
    PathCreator(PathCreator&&) noexcept;
    /// Takes the other text as it stands, like a copy.
    PathCreator& operator=(PathCreator const&);
    /// As above, taking the source's text away.
    PathCreator& operator=(PathCreator&&) noexcept;

    /// Empties the builder, then `append` of the text.
    PathCreator& operator=(std::wstring const& text);
    /// As above.
    PathCreator& operator=(wchar_t const* text);

    virtual ~PathCreator();

    /// Joins one piece. Forward slashes of the piece turn into backslashes; if the text is not
    /// empty there is one backslash between text and piece, for which one leading backslash of the
    /// piece is dropped where the text ends in one. An empty piece changes nothing. Separators at
    /// the end of the piece stay. A forward slash that is in the text already is no separator.
    /// @return this builder
    PathCreator& append(std::wstring const& piece);
    /// As above.
    PathCreator& append(wchar_t const* piece);

    /// Adds text to the end as it is: no separator, no conversion.
    /// @return this builder
    PathCreator& appendRaw(std::wstring const& text);
    /// As above.
    PathCreator& appendRaw(wchar_t const* text);

    /// Empties the text.
    void clear();

    /// Whether the text has length zero.
    bool empty() const;

    /// The text, zero-terminated, valid until the next change.
    wchar_t const* c_str() const;

    /// A copy of the text.
    std::wstring get() const;

    /// Turns every backslash of the text into a forward slash, for interfaces that want those.
    /// Nothing turns them back.
    void convertToForwardSlash();

  protected:
    /// The text.
    std::wstring m_path;
};

/// A text taken apart. Built once, never changed; copies are independent, and any thread may read.
///
/// The parts, in order, are root, drive, folder text, name and extension. Forward slashes read as
/// backslashes. What looks odd is meant: a single leading backslash is lost (`\a\b` has the folder
/// `a\`); `C:name` has no drive but the folder `C:\`; the stream of `name:stream` is dropped, that
/// of `name.ext:stream` stays in the extension; a host with a dot is only a host where a separator
/// closes it or the text is a folder's.
///
/// The text of the parts is one block inside the object, so that a parse allocates only the list of
/// folders; texts of more than 260 characters move to the heap.
class VRUTILS_API PathSplitter {
  public:
    /// Takes a text apart, up to its first zero character.
    /// @param text any text, of any length
    /// @param isFile whether the last part is a file name with an extension; if not, a dot in it is
    ///        part of the name
    PathSplitter(std::wstring const& text, bool isFile);

    /// A parse never gives its parts away: moving copies.
    PathSplitter(PathSplitter const&);
    /// Takes over all parts.
    PathSplitter& operator=(PathSplitter const&);
    ~PathSplitter();

    /// Network root: two backslashes, the host with any port, one backslash; or empty.
    std::wstring root() const;

    /// Drive letter, colon and backslash; or empty.
    std::wstring drive() const;

    /// `root` followed by `drive`.
    std::wstring rootAndDrive() const;

    /// The folders, each followed by one backslash.
    std::wstring folderText() const;

    /// `rootAndDrive` followed by `folderText`.
    std::wstring folderPath() const;

    /// `folderPath` followed by `fileName`.
    std::wstring pathNoExtension() const;

    /// All parts: the normal form of the text.
    std::wstring wholePath() const;

    /// The name without its extension, or the last part of a folder's text that no backslash
    /// closes.
    std::wstring fileName() const;

    /// The extension with its leading dot; or empty.
    std::wstring extension() const;

    /// `fileName` followed by `extension`.
    std::wstring fullName() const;

    /// The folders in order: none empty, none with a backslash. Lives as long as this object.
    std::list<std::wstring> const& folders() const { return m_folders; }

    /// The host of the root without its port: two backslashes, the name, one backslash; the root
    /// itself if it holds no name; empty without a root.
    std::wstring host() const;

    /// The port of the root, 0 if there is none or its text begins with no number, 0xFFFFFFFF if
    /// the number is too large. A minus sign wraps the number around.
    std::uint32_t port() const;

    /// The share of a network path: its first folder and one backslash; empty if there is no root
    /// or no folder.
    std::wstring firstFolder() const;

  private:
    friend class Path;

    struct RawParts;
    static RawParts _splitpath(std::wstring_view text);
    void assemble(RawParts const& parts);

    std::wstring_view part(std::size_t begin, std::size_t end) const;
    std::wstring_view whole() const { return part(0, m_extensionEnd); }
    bool hasFullName() const { return m_extensionEnd > m_foldersEnd; }

    static constexpr std::size_t inlineCapacity = 260;

    // The parts one behind the other, and where each ends.
    std::array<wchar_t, inlineCapacity> m_inlineText;
    std::wstring m_longText;
    std::size_t m_rootEnd = 0;
    std::size_t m_driveEnd = 0;
    std::size_t m_foldersEnd = 0;
    std::size_t m_nameEnd = 0;
    std::size_t m_extensionEnd = 0;
    std::list<std::wstring> m_folders;
};

/// A path, known to be a folder's or a file's, that takes itself apart on demand.
///
/// Two states: not parsed and parsed. What asks for parts, or for the normal form, parses once and
/// keeps the parse; `modify` drops it. Copies never carry the parse.
///
/// Copying and assigning differ on purpose: a copy holds the text of its source as it was entered,
/// an assigned path holds the source's normal form. So `C:name`, which is relative, stays relative
/// in a copy and becomes the absolute `C:\name` by assignment.
///
/// @code
/// vr::Path clip = vr::Path::file(L"server", L"share/Media", L"clip.mxf");
/// clip.str();                      // \\server\share\Media\clip.mxf
/// clip.components().firstFolder(); // share\ (the share)
/// @endcode
class VRUTILS_API Path : private PathCreator {
  public:
    /// What a path denotes.
    enum eType : std::int32_t {
        eFolder = 0, ///< the last part is a folder; a dot in it is no extension
        eDetect = 1, ///< the text decides: a file if a name ends it, else a folder
        eFile = 2,   ///< the last part is a file name with an extension
    };

    /// The empty text, as a folder.
    Path();

    /// The text and type of the source, without its parse. A path that was moved from is empty.
    Path(Path const&);
    /// As above, taking the source's text away.
    Path(Path&&) noexcept;

    /// `PathCreator::append` of the text to an empty path. With `eDetect` the path is parsed at
    /// once and becomes `eFolder` or `eFile`.
    Path(std::wstring const& text, eType type);
    /// As above; not null.
    Path(wchar_t const* text, eType type);

    ~Path() override;

    /// A folder.
    static Path folder(std::wstring const& text);

    /// A folder on a host; see the four-argument constructor of `PathCreator`.
    static Path folder(std::wstring const& host, std::wstring const& folder);

    /// A file.
    static Path file(std::wstring const& text);

    /// A file on a host.
    static Path
    file(std::wstring const& host, std::wstring const& folder, std::wstring const& name);

    /// A file on a host with its extension apart; the extension carries its own dot.
    static Path file(
        std::wstring const& host, std::wstring const& folder, std::wstring const& name,
        std::wstring const& extension);

    /// Takes the normal form and the type of the other path. A path may be assigned to itself.
    Path& operator=(Path const& other);

    /// Appends the normal form of the other path and takes its type. An absolute path on the right
    /// is not seen: its drive then stands inside this path.
    Path& operator+=(Path const& other);

    /// The normal form. Not const, since it may build the parse; const code asks
    /// `components().wholePath()`. Each call makes a new string: code that needs it often keeps it.
    std::wstring str();

    /// Whether the text as entered has length zero. A path of one backslash is not empty.
    bool empty() const;

    /// The length of the normal form. For a path of one backslash it is 0.
    std::uint64_t size() const;

    /// Whether there is neither root nor drive.
    bool isRelative() const;

    /// Whether there is a root or a drive.
    bool isAbsolute() const;

    /// Whether the normal form begins with that of the other path, without regard to case. Text is
    /// compared, not folders: `C:\Media` has a common root with `C:\Med`. An empty other gives
    /// true.
    bool hasCommonRoot(Path const& other) const;

    /// What is left of the normal form behind that of the other path, with the type of this path;
    /// a copy of this path if the other is empty or has no common root with it.
    Path removeCommonRoot(Path const& other) const;

    /// The parse, built on first need; valid until the path is changed or destroyed.
    PathSplitter const& components() const;

    /// Gives access to the text for a change in place: drops the parse and sets the type. `eDetect`
    /// stays as it is here, and the text then parses as a file's. The reference is to be used
    /// before the path is read again: later changes through it would not reach the parse.
    PathCreator& modify(eType type);

    /// Appends a folder unless the last folder has that name already, upper and lower case being
    /// different. Slashes around the name do not count in the comparison, and are appended. The
    /// path then parses as a file's, so that the folder is its name unless it ended in a separator.
    /// @return whether it was appended; false too if the path has a name, as a folder's text that
    ///         no backslash closes does
    bool AppendFolderIfNotPresent(std::wstring const& folder);

  private:
    Path(
        std::wstring const& host, std::wstring const& folder, std::wstring const& name,
        std::wstring const& extension, eType type);
    void settleType(eType type);
    std::wstring_view normalForm() const;

    friend VRUTILS_API bool operator==(Path const& left, Path const& right);

    mutable std::unique_ptr<PathSplitter> m_splitter;
    eType m_type = eFolder;
};

/// Whether the normal forms are equal without regard to case; the types play no part.
VRUTILS_API bool operator==(Path const& left, Path const& right);

/// The opposite of `operator==`.
inline bool operator!=(Path const& left, Path const& right) { return !(left == right); }

/// A copy of the left path with `operator+=` of the right one.
VRUTILS_API Path operator+(Path const& left, Path const& right);

/// Writes the normal form.
VRUTILS_API std::wostream& operator<<(std::wostream& stream, Path const& path);

} // namespace vr

#endif
