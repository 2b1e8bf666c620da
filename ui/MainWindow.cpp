#include "ui/MainWindow.h"

#include "ui/App.h"
#include "ui/PrivateMessages.h"
#include "ui/SoftKeyBar.h"
#include "ui/WindowGeometry.h"

#include <QCloseEvent>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace qf::ui {

namespace {

bool IsPrivateMessage(QEvent::Type type) {
    const int number = type;
    return number >= QFM_OPENCHANNEL && number <= kHandOverEvent;
}

} // namespace

MainWindow::MainWindow(App& app)
    : app_(app), screens_(new QStackedWidget(this)),
      softKeys_(new SoftKeyBar([this](int command) { app_.OnCommand(kCtlNone, command); },
                               [this](QMenu* menu) { app_.OnMenuPopup(menu, true); }, this)) {
    setObjectName(QStringLiteral("POCKETQF"));
    setWindowTitle(QStringLiteral("Quillfeed"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillfeed.svg")));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(screens_, 1);
    layout->addWidget(softKeys_);
    AddAccelerators();
    RestoreGeometry(*this);
}

void MainWindow::AddAccelerators() {
    const struct {
        QKeySequence keys;
        std::function<void()> action;
    } accelerators[] = {
        {QKeySequence(Qt::CTRL | Qt::Key_A), [this] { app_.OnCommand(kCtlNone, kCmdAbout); }},
        {QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { app_.OnCommand(kCtlNone, kCmdQuit); }},
        {QKeySequence(Qt::Key_Escape), [this] { app_.OnBack(); }},
    };
    for (const auto& accelerator : accelerators) {
        auto* shortcut = new QShortcut(accelerator.keys, this);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this, accelerator.action);
    }
}

void MainWindow::AddScreen(QWidget* screen) {
    screens_->addWidget(screen);
}

void MainWindow::ShowScreen(QWidget* screen) {
    screens_->setCurrentWidget(screen);
    screen->setFocus();
}

QWidget* MainWindow::currentScreen() const {
    return screens_->currentWidget();
}

bool MainWindow::event(QEvent* event) {
    if (IsPrivateMessage(event->type())) {
        app_.OnPrivateMessage(*static_cast<PrivateMessageEvent*>(event));
        return true;
    }
    return QWidget::event(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    SaveGeometry(*this);
    app_.OnDestroy();
    event->accept();
}

void MainWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        app_.OnActivate();
    }
    QWidget::changeEvent(event);
}

} // namespace qf::ui
