#ifndef VRUTILS_SERVERRECORDS_H
#define VRUTILS_SERVERRECORDS_H

/// @file
/// The server's own records, as far as this library reads them.
///
/// The server's modules define these types in full; here stand the members that are used, in their
/// order, so that the library and its tests build without those modules. A program of the server
/// family passes its own records. Everything is zero or empty until it is filled.
///
/// The enumerations take in whatever integer arrives: a value that has no name here is no error,
/// and each operation tells what it makes of it.
///
/// These are plain values without locks: one object is for one thread at a time.
///
/// A build inside the server family names the server's own header instead, for the library and for
/// its hosts alike: `VRUTILS_SERVER_RECORDS="server/Records.h"` (with the quotes). That header then
/// declares all the types of this one under these names, with these members and enumerators; it may
/// have more of both, and longer texts.

#ifdef VRUTILS_SERVER_RECORDS
#include VRUTILS_SERVER_RECORDS
#else

#include "vrUtils/Path.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

/// The rate that timecode counts at. Four digits in a name are hundredths: 2398 is 23.98 frames per
/// second.
enum EFrameRate : std::int32_t {
    eFrameRateUnknown = 0,  ///< none
    eFrameRate25 = 1,       ///< counts to 25
    eFrameRate30 = 2,       ///< counts to 30
    eFrameRate2997Drop = 3, ///< counts to 30, drops two numbers a minute
    eFrameRate24 = 4,       ///< counts to 24
    eFrameRate2398 = 5,     ///< counts to 24
    eFrameRate50 = 6,       ///< counts to 50
    eFrameRate60 = 7,       ///< counts to 60
    eFrameRate5994Drop = 8, ///< counts to 60, drops four numbers a minute
};

/// The kind of a server. Most kinds mean nothing to the library by themselves and have no name.
enum EServerType : std::int32_t {
    eServerUnknown = 0,           ///< of no known kind
    eServerCombiningArchive = 22, ///< one that combines with its archive
};

/// What a kind of server has for an archive.
enum EArchiveSource : std::int32_t {
    eArchiveNone = 0,   ///< no archive
    eArchiveFirst = 1,  ///< an archive of the first kind
    eArchiveSecond = 2, ///< an archive of the second kind
};

/// What a track holds; `vrUtils::Tracks::typeName` gives the names.
enum vrTrackType : std::int32_t {
    eTrackUndefined = 0, ///< "Undefined"
    eTrackMaster = 1,    ///< "Master"
    eTrackTimecode = 2,  ///< "Timecode"
    eTrackVideo = 3,     ///< "Video"
    eTrackAudio = 4,     ///< "Audio"
    eTrackData = 5,      ///< "Data"
    eTrackSegment = 6,   ///< "Segment"
    eTrackComment = 7,   ///< "Comment"
};

/// The record of a media object (mob): six words.
struct MyMobID {
    /// The tag of a valid record: the letters "mobb", the first in the most significant place.
    static constexpr std::uint32_t validTag = 0x6D6F6262;

    std::uint32_t tag = 0;          ///< `validTag` in a valid record
    std::uint32_t unread[3] = {};   ///< not looked at here
    std::uint32_t duration = 0;     ///< in frames
    std::uint32_t baseTimecode = 0; ///< in frames from midnight
};

/// A node of a list of media objects; owns neither its object nor its follower.
struct MobListNode {
    MyMobID* mob = nullptr;      ///< may be null
    MobListNode* next = nullptr; ///< null at the end
};

/// A list of media objects together with the place where a walk over it stands.
struct MobList {
    MobListNode* first = nullptr;   ///< null if the list is empty
    void* unread = nullptr;         ///< not looked at here
    MobListNode* current = nullptr; ///< null until a walk has begun
};

/// An item of an asset. Copies share the list, and so the place of a walk over it.
struct vrAssetItem {
    boost::shared_ptr<MobList> mobs; ///< null if the item has no list
};

/// How a server is reached.
struct SrvrParam {
    std::wstring host;        ///< name or address
    std::uint32_t type = 0;   ///< the kind, as in `EServerType`
    std::wstring userName;    ///< for the share; empty if none is configured
    std::wstring password;    ///< for the share
    wchar_t folder[260] = {}; ///< zero-terminated; its first folder is the share
};

/// One file of a transfer, and a number that goes with it.
class TransferFile {
  public:
    /// Keeps both.
    TransferFile(vr::Path name, std::uint32_t number) : m_name(std::move(name)), m_number(number) {}

    /// The file; belongs to this object.
    vr::Path const& Name() const { return m_name; }

    /// The number.
    std::uint32_t Number() const { return m_number; }

  private:
    vr::Path m_name;
    std::uint32_t m_number;
};

/// A transfer: its target, and beside it what is transferred. Texts are zero-terminated.
struct TransferParams : SrvrParam {
    wchar_t relativeRoot[260] = {};   ///< folder under which relative file names are taken
    wchar_t metadataFolder[260] = {}; ///< folder of metadata messages; empty: the target's folder
    wchar_t fileName[260] = {};       ///< the file of a transfer of one
    std::deque<TransferFile> files;   ///< the files of a transfer of many; may be empty
    wchar_t sourceName[260] = {};     ///< a name to use as it stands, for a target of type 20
};

#endif

#endif
