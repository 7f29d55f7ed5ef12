#ifndef TESTS_MEDIA_SERVERSOWNRECORDS_H
#define TESTS_MEDIA_SERVERSOWNRECORDS_H

// Records as the server's own modules may define them: with what the library reads, and with more
// around it.

#include "vrUtils/Path.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

enum EFrameRate : std::int32_t {
    eFrameRateUnknown = 0,
    eFrameRate25,
    eFrameRate30,
    eFrameRate2997Drop,
    eFrameRate24,
    eFrameRate2398,
    eFrameRate50,
    eFrameRate60,
    eFrameRate5994Drop,
    eFrameRate120,
};

enum EServerType : std::int32_t {
    eServerUnknown = 0,
    eServerTape = 13,
    eServerCombiningArchive = 22
};

enum EArchiveSource : std::int32_t { eArchiveNone, eArchiveFirst, eArchiveSecond, eArchiveThird };

enum vrTrackType : std::int32_t {
    eTrackUndefined,
    eTrackMaster,
    eTrackTimecode,
    eTrackVideo,
    eTrackAudio,
    eTrackData,
    eTrackSegment,
    eTrackComment,
    eTrackCaptions,
};

struct MyMobID {
    static constexpr std::uint32_t validTag = 0x6D6F6262;

    std::uint32_t tag = validTag;
    std::uint32_t unread[3] = {};
    std::uint32_t duration = 0;
    std::uint32_t baseTimecode = 0;
    std::wstring label;
};

struct MobListNode {
    MyMobID* mob = nullptr;
    MobListNode* next = nullptr;
    MobListNode* previous = nullptr;
};

struct MobList {
    MobListNode* first = nullptr;
    MobListNode* unread = nullptr;
    MobListNode* current = nullptr;
    std::size_t count = 0;
};

class vrAssetItem {
  public:
    virtual ~vrAssetItem() = default;

    std::wstring name;
    boost::shared_ptr<MobList> mobs;
};

struct SrvrParam {
    std::uint64_t identity = 0;
    std::wstring host;
    std::uint32_t type = 0;
    std::wstring userName;
    std::wstring password;
    wchar_t folder[260] = {};
};

class TransferFile {
  public:
    TransferFile(vr::Path name, std::uint32_t number) : m_number(number), m_name(std::move(name)) {}

    vr::Path const& Name() const { return m_name; }
    std::uint32_t Number() const { return m_number; }

  private:
    std::uint32_t m_number;
    vr::Path m_name;
};

struct TransferParams : SrvrParam {
    wchar_t relativeRoot[520] = {};
    wchar_t metadataFolder[520] = {};
    wchar_t fileName[520] = {};
    std::deque<TransferFile> files;
    wchar_t sourceName[520] = {};
    bool isUrgent = false;
};

#endif
