#ifndef TESTS_MEDIA_TRANSFERS_H
#define TESTS_MEDIA_TRANSFERS_H

#include "vrUtils/ServerRecords.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace test {

// Fills one of a transfer's texts.
template <std::size_t capacity>
void put(wchar_t (&field)[capacity], std::wstring const& text) {
    if (text.size() >= capacity)
        throw std::length_error("the text does not fit");
    field[text.copy(field, capacity - 1)] = L'\0';
}

inline void add(TransferParams& transfer, vr::Path const& file) {
    transfer.files.emplace_back(file, static_cast<std::uint32_t>(transfer.files.size()));
}

// A transfer of one file to a folder on a share.
inline TransferParams transferOf(std::wstring const& fileName) {
    TransferParams transfer;
    transfer.host = L"server";
    put(transfer.folder, L"share/Media");
    put(transfer.fileName, fileName);
    return transfer;
}

} // namespace test

#endif
