#include "ui/Startup.h"

#include "platform/DataLock.h"
#include "ui/App.h"
#include "ui/DeviceFamily.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"
#include "ui/Resources.h"
#include "ui/SingleInstance.h"

#include <QApplication>
#include <QMessageBox>

namespace qf::ui {

namespace {

void BringToFront(QWidget& window) {
    if (window.isMinimized()) {
        window.showNormal();
    }
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace

int RunQuillfeed(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillfeed"));
    QApplication::setOrganizationName(QStringLiteral("Orvelcraft"));
    QApplication::setDesktopFileName(QStringLiteral("com.orvelcraft.Quillfeed"));
    InitResources();
    const DeviceFamily family = DetectDeviceFamily();

    SingleInstance instance;
    if (instance.ActivateRunning()) {
        return 0;
    }
    const DataLock lock;
    if (!lock.held()) {
        QMessageBox::critical(nullptr, QStringLiteral("Quillfeed"), ToQString(lock.errorText()));
        return 1;
    }
    App app(family);
    if (!app.Start()) {
        return 1;
    }
    instance.Listen([&app] { BringToFront(*app.mainWindow()); });
    const int code = QApplication::exec();
    app.Finish();
    return code;
}

} // namespace qf::ui
