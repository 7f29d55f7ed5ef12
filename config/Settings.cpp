#include "vrUtils/Registry/Settings.h"

#include "vrUtils/Registry/Exceptions.h"
#include "vrUtils/Registry/Values.h"

namespace vrUtils::Registry {

namespace {

// What a read gives, or the fallback where the registry has nothing to give.
template <typename Value>
Value readOr(
    Value const& fallback, Value (*read)(std::wstring const&, std::wstring const&),
    wchar_t const* key, wchar_t const* name) {
    try {
        return read(key, name);
    } catch (vrRegistryAccessException const&) {
        return fallback;
    } catch (vrRegistryValueMissingException const&) {
        return fallback;
    }
}

} // namespace

std::uint32_t GetMaximumConcurrentTransfers(std::uint32_t fallback) {
    return readOr(fallback, ReadCurrentUserDWORDValue, ServerKey, MaximumTransfersValue);
}

void SetMaximumConcurrentTransfers(std::uint32_t value) {
    WriteCurrentUserValue(ServerKey, MaximumTransfersValue, value);
}

std::wstring GetInterplayWSAddress(std::wstring const& fallback) {
    return readOr(fallback, ReadLocalMachineString, ServerKey, InterplayWSHostValue);
}

std::wstring GetInterplayAssetFilter() {
    return readOr({}, ReadLocalMachineString, ServerKey, InterplayAssetFilterValue);
}

std::wstring GetInterplayIDNameFilter() {
    return readOr({}, ReadLocalMachineString, ServerKey, InterplayIDFilterValue);
}

std::int32_t GetNumJobRebmits(std::int32_t fallback) {
    return static_cast<std::int32_t>(readOr(
        static_cast<std::uint32_t>(fallback), ReadLocalMachineDWORDValue, ServerKey,
        MaxNumTransferRetriesValue));
}

std::uint32_t GetEngineCacheDepth(std::uint32_t fallback) {
    return readOr(fallback, ReadLocalMachineDWORDValue, EngineKey, EngineCacheDepthValue);
}

bool IsDotNet35Installed() {
    constexpr std::uint32_t installed = 1;
    return readOr({}, ReadLocalMachineDWORDValue, DotNet35Key, DotNet35InstallValue) == installed;
}

} // namespace vrUtils::Registry
