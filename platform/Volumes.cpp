#include "platform/Volumes.h"

#include "platform/FsPath.h"
#include "platform/UserFolders.h"

#include <algorithm>
#include <cstdlib>
#include <sys/stat.h>

namespace qf {

namespace {

constexpr char16_t kVolumeSeparator = u'\\';
constexpr std::u16string_view kMainMemory = u"\\";
constexpr std::string_view kCardFolderName = "Quillfeed";

// Adds the sub-folders of `root`. Below /media only mount points are volumes: an empty folder
// left behind by an unmounted card is no card.
void AddSubfolders(const std::filesystem::path& root, bool mountPointsOnly,
                   std::vector<StorageCard>& cards) {
    struct stat rootStat {};
    if (::stat(root.c_str(), &rootStat) != 0) {
        return;
    }
    std::error_code error;
    for (std::filesystem::directory_iterator entry(root, error), end; !error && entry != end;
         entry.increment(error)) {
        struct stat entryStat {};
        if (::stat(entry->path().c_str(), &entryStat) != 0 || !S_ISDIR(entryStat.st_mode) ||
            (mountPointsOnly && entryStat.st_dev == rootStat.st_dev)) {
            continue;
        }
        cards.push_back({FromFsPath(entry->path().filename()), entry->path()});
    }
}

} // namespace

std::vector<StorageCard> ListStorageCards() {
    std::vector<StorageCard> cards;
    if (const char* override = std::getenv("QUILLFEED_CARDS");
        override != nullptr && *override != '\0') {
        AddSubfolders(override, false, cards);
    } else {
        if (const auto user = UserName()) {
            AddSubfolders(std::filesystem::path("/media") / *user, true, cards);
            AddSubfolders(std::filesystem::path("/run/media") / *user, true, cards);
        }
        AddSubfolders("/media", true, cards);
    }
    auto byName = [](const StorageCard& a, const StorageCard& b) {
        return a.mountPoint.filename() < b.mountPoint.filename();
    };
    std::stable_sort(cards.begin(), cards.end(), byName);
    // The same name mounted in two places is one volume path: the first place keeps it.
    cards.erase(
        std::unique(cards.begin(), cards.end(),
                    [](const StorageCard& a, const StorageCard& b) { return a.name == b.name; }),
        cards.end());
    return cards;
}

std::optional<std::filesystem::path> VolumeFolder(std::u16string_view volume) {
    if (volume == kMainMemory) {
        return MainMemoryFolder();
    }
    if (volume.size() < 2 || volume.front() != kVolumeSeparator) {
        return std::nullopt;
    }
    const std::u16string_view name = volume.substr(1);
    for (const StorageCard& card : ListStorageCards()) {
        if (card.name == name) {
            return card.mountPoint / kCardFolderName;
        }
    }
    return std::nullopt;
}

} // namespace qf
