#include "ui/HelpPage.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace qf::ui {

namespace {

constexpr auto kHelpFile = "Quillfeed.htm";
constexpr auto kContents = "Main_Contents";

} // namespace

QUrl HelpPageUrl() {
    const QString programFolder = QCoreApplication::applicationDirPath();
    const QString candidates[] = {
        programFolder + QLatin1Char('/') + QLatin1String(kHelpFile),
        programFolder + QStringLiteral("/../share/quillfeed/") + QLatin1String(kHelpFile),
    };
    for (const QString& candidate : candidates) {
        if (QFileInfo(candidate).isFile()) {
            QUrl url = QUrl::fromLocalFile(QFileInfo(candidate).canonicalFilePath());
            url.setFragment(QLatin1String(kContents));
            return url;
        }
    }
    return {};
}

} // namespace qf::ui
