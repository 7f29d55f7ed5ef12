// Message names against their rules, written down step by step, on random transfers.

#include "vrUtils/AssetManagement.h"

#include "tests/foundation/RandomText.h"
#include "tests/media/Transfers.h"
#include "vrUtils/Files.h"

#include <gtest/gtest.h>

namespace {

using Names = RandomText<wchar_t>;

constexpr auto failed = L"failed";

bool isAbsolute(vr::Path const& path) { return vr::Path(path).isAbsolute(); }

vr::Path below(vr::Path folder, vr::Path const& name) {
    folder += name;
    return folder;
}

// The whole list is built, though its first path alone is used.
std::deque<TransferFile> listOf(TransferParams const& transfer) {
    auto const& files = transfer.files;
    vr::Path const folder(transfer.folder, vr::Path::eDetect);
    bool hasAbsolute = false;
    for (auto const& entry : files)
        hasAbsolute = hasAbsolute || isAbsolute(entry.Name());
    if (files.empty())
        hasAbsolute =
            isAbsolute(folder) || isAbsolute(vr::Path(transfer.fileName, vr::Path::eDetect));

    auto const root = vr::Path::folder(transfer.relativeRoot);
    auto const single = vr::Path::file(transfer.fileName);
    std::deque<TransferFile> list;
    for (auto const& entry : files)
        list.emplace_back(hasAbsolute ? entry.Name() : below(root, entry.Name()), entry.Number());
    if (files.empty() && !single.empty() && !hasAbsolute)
        list.emplace_back(below(root, single), 0);
    if (files.empty() && !single.empty() && hasAbsolute)
        list.emplace_back(isAbsolute(single) ? single : below(folder, single), 0);
    return list;
}

std::wstring
join(std::wstring const& folder, std::wstring const& prefix, std::wstring const& name) {
    vr::PathCreator path;
    path.append(folder);
    if (prefix.empty())
        return path.append(name).get();
    return path.append(prefix).get() + name;
}

std::wstring legal(std::wstring const& name) {
    std::wstring result;
    vrUtils::Files::GenerateLegalFilename(name, result, false);
    return result;
}

std::wstring targetOf(TransferParams const& transfer) {
    return vr::PathCreator(transfer.host, transfer.folder, nullptr, nullptr).get();
}

std::wstring modelOfMam(TransferParams const& transfer, std::wstring const& prefix) {
    auto const list = listOf(transfer);
    auto const name = list.empty() ? std::wstring() : list.front().Name().components().fileName();
    return join(targetOf(transfer), prefix, legal(name + L".xml"));
}

std::wstring modelOfMetadata(
    TransferParams const& transfer, std::wstring const& prefix, std::wstring const& extension) {
    std::wstring folder = transfer.metadataFolder;
    if (folder.empty())
        folder = targetOf(transfer);
    else if (folder.back() != L'\\' && folder.back() != L'/')
        folder += L'\\';

    auto name = vr::Path::file(transfer.fileName).components().fileName();
    if (transfer.type == 20)
        name = transfer.sourceName;
    if (name.empty())
        return failed;
    return join(folder, prefix, legal(name)) + (extension.empty() ? L".xml" : extension);
}

std::wstring metadata(
    TransferParams const& transfer, std::wstring const& prefix, std::wstring const& extension) {
    try {
        return vrUtils::AssetManagement::CreateMetadataMsgFileName(&transfer, prefix, extension);
    } catch (vrException const&) {
        return failed;
    }
}

std::wstring rarely(Names& names, std::wstring const& text) {
    return names.below(2) ? text : std::wstring();
}

vr::Path randomPath(Names& names) {
    auto const text = rarely(names, L"C:\\") + names.upTo(6);
    return vr::Path(text, static_cast<vr::Path::eType>(names.below(3)));
}

TransferParams randomTransfer(Names& names) {
    TransferParams transfer;
    transfer.host = names.upTo(4);
    transfer.type = static_cast<std::uint32_t>(19 + names.below(3));
    test::put(transfer.folder, rarely(names, LR"(\\srv\)") + names.upTo(6));
    test::put(transfer.relativeRoot, names.upTo(6));
    test::put(transfer.metadataFolder, rarely(names, names.upTo(6)));
    test::put(transfer.fileName, rarely(names, names.upTo(8)));
    test::put(transfer.sourceName, names.upTo(8));
    for (auto count = names.below(4); count > 1; --count)
        test::add(transfer, randomPath(names));
    return transfer;
}

} // namespace

TEST(AssetManagementCampaign, NamesFollowTheRules) {
    test::Campaign campaign(20000);
    Names names(L"\\/:.~*aB1 \u00E9", campaign);
    while (campaign.nextRound()) {
        auto const transfer = randomTransfer(names);
        auto const prefix = rarely(names, names.upTo(4));
        auto const extension = rarely(names, names.upTo(4));

        ASSERT_EQ(
            modelOfMam(transfer, prefix),
            vrUtils::AssetManagement::CreateMAMMsgFileName(&transfer, prefix))
            << campaign;
        ASSERT_EQ(
            modelOfMetadata(transfer, prefix, extension), metadata(transfer, prefix, extension))
            << campaign;
    }
}
