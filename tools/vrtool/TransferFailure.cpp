#include "tools/vrtool/TransferFailure.h"

#include "tools/vrtool/SystemText.h"

TransferFailure::TransferFailure(
    std::wstring const& what, vr::Path const& path, std::uint32_t error)
    : TransferFailure(what + L' ' + quoted(path) + L": " + systemText(error)) {}

std::wstring quoted(vr::Path const& path) { return L'"' + path.components().wholePath() + L'"'; }
