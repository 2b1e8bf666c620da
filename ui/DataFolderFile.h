#pragma once

#include <QString>

namespace qf::ui {

// True when `path` names an existing file inside the data folder of main memory or of a storage
// card, after links and ".." are followed: the only local files a page may show are the ones
// the program wrote there itself (logos and kept pictures), never others a feed names.
bool IsDataFolderFile(const QString& path);

} // namespace qf::ui
