#include "ui/DataFolderFile.h"

#include "model/DataFolder.h"
#include "platform/Volumes.h"
#include "ui/QtText.h"

#include <QDir>
#include <QFileInfo>
#include <string>
#include <vector>

namespace qf::ui {

namespace {

constexpr std::u16string_view kMainMemoryVolume = u"\\";

std::vector<std::u16string> DataFolders() {
    std::vector<std::u16string> volumes{std::u16string(kMainMemoryVolume)};
    for (const StorageCard& card : ListStorageCards()) {
        volumes.push_back(std::u16string(kMainMemoryVolume) + card.name);
    }
    std::vector<std::u16string> folders;
    for (const std::u16string& volume : volumes) {
        if (auto folder = DataFolderOfVolume(volume)) {
            folders.push_back(std::move(*folder));
        }
    }
    return folders;
}

} // namespace

bool IsDataFolderFile(const QString& path) {
    const QString file = QFileInfo(path).canonicalFilePath();
    if (file.isEmpty()) {
        return false;
    }
    for (const std::u16string& folder : DataFolders()) {
        const QString root = QFileInfo(ToQString(folder)).canonicalFilePath();
        if (!root.isEmpty() && file.startsWith(root + QDir::separator())) {
            return true;
        }
    }
    return false;
}

} // namespace qf::ui
