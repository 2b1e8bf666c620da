#include "ui/AboutBox.h"

#include "platform/Version.h"

#include <QMessageBox>

namespace qf::ui {

void ShowAboutBox(QWidget* parent) {
    QMessageBox::about(parent, QStringLiteral("About %1").arg(QLatin1String(kProductName)),
                       QStringLiteral("<b>%1</b><br>Version %2<br><br>A news-feed reader for RSS "
                                      "and Atom channels.")
                           .arg(QLatin1String(kProductName), QLatin1String(kProductVersion)));
}

} // namespace qf::ui
