#include "ui/MainWindow.h"

#include "ui/App.h"
#include "ui/PrivateMessages.h"
#include "ui/SoftKeyBar.h"
#include "ui/WindowGeometry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <optional>

namespace qf::ui {

namespace {

// Channels, headlines and story share the width about a quarter, three tenths and the rest.
const QList<int> kFirstPaneSizes = {25, 30, 45};

bool IsPrivateMessage(QEvent::Type type) {
    const int number = type;
    return number >= QFM_OPENCHANNEL && number <= kHandOverEvent;
}

// Tab forwards, Shift+Tab (Backtab) backwards; nullopt for any other key.
std::optional<bool> TabDirection(const QKeyEvent& key) {
    if ((key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0) {
        return std::nullopt;
    }
    if (key.key() == Qt::Key_Backtab) {
        return false;
    }
    if (key.key() == Qt::Key_Tab) {
        return (key.modifiers() & Qt::ShiftModifier) == 0;
    }
    return std::nullopt;
}

} // namespace

MainWindow::MainWindow(App& app)
    : app_(app), screens_(new QStackedWidget(this)), splitter_(new QSplitter(screens_)),
      softKeys_(new SoftKeyBar([this](int command) { app_.OnCommand(kCtlNone, command); },
                               [this](QMenu* menu) { app_.OnMenuPopup(menu, true); }, this)) {
    setObjectName(QStringLiteral("POCKETQF"));
    setWindowTitle(QStringLiteral("Quillfeed"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillfeed.svg")));
    splitter_->setObjectName(QStringLiteral("Panes"));
    splitter_->setChildrenCollapsible(false);
    screens_->addWidget(splitter_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(screens_, 1);
    layout->addWidget(softKeys_);
    AddAccelerators();
    RestoreGeometry(*this);
    keptPaneSizes_ = StoredPaneSizes(static_cast<int>(panes_.size()));
    if (keptPaneSizes_.isEmpty()) {
        keptPaneSizes_ = kFirstPaneSizes;
    }
    // Tab is claimed before the lists and pages see it, as they would keep it for themselves; the
    // window's own resizing is seen before its layout acts on it.
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { FollowFocus(now); });
}

MainWindow::~MainWindow() {
    // The screens going away move the focus; the frame must not hear of it any more.
    disconnect(qApp, nullptr, this, nullptr);
    qApp->removeEventFilter(this);
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

void MainWindow::AddPanes(const std::array<QWidget*, 3>& panes) {
    panes_ = panes;
    for (QWidget* pane : panes_) {
        screens_->addWidget(pane);
    }
    if (isVisible()) {
        ArrangeScreens();
    }
}

void MainWindow::ShowScreen(QWidget* screen) {
    const bool pane = std::ranges::find(panes_, screen) != panes_.end();
    if (wide_ && pane) {
        screens_->setCurrentWidget(splitter_);
        focusedPane_ = screen;
    } else {
        screens_->setCurrentWidget(screen);
    }
    screen->setFocus();
}

QWidget* MainWindow::currentScreen() const {
    return ShowsPanes() ? focusedPane_ : screens_->currentWidget();
}

bool MainWindow::ShowsPanes() const {
    return wide_ && screens_->currentWidget() == splitter_;
}

QWidget* MainWindow::PaneOf(const QWidget* widget) const {
    for (QWidget* pane : panes_) {
        if (pane != nullptr && (pane == widget || pane->isAncestorOf(widget))) {
            return pane;
        }
    }
    return nullptr;
}

void MainWindow::ArrangeScreens() {
    const bool wide = width() >= kWideWidth;
    if (panes_.front() == nullptr || wide == wide_) {
        return;
    }
    QWidget* shown = currentScreen();
    QWidget* focused = focusWidget();
    PlacePanes(wide);
    app_.OnPanesPlaced();
    if (shown == nullptr) {
        return;
    }
    ShowScreen(shown);
    if (focused != nullptr && shown->isAncestorOf(focused) && focused->isVisibleTo(shown)) {
        focused->setFocus();
    }
}

void MainWindow::PlacePanes(bool wide) {
    if (!wide) {
        keptPaneSizes_ = paneSizes();
    }
    wide_ = wide;
    for (QWidget* pane : panes_) {
        if (wide) {
            splitter_->addWidget(pane);
            pane->show();
        } else {
            screens_->addWidget(pane);
        }
    }
    if (wide) {
        splitter_->setSizes(keptPaneSizes_);
        // Screen readers walk the panes in the order of the splitter's children, which moving
        // them in leaves reversed: raising each in turn puts them left to right.
        for (QWidget* pane : panes_) {
            pane->raise();
        }
    }
}

QList<int> MainWindow::paneSizes() const {
    if (!wide_ || splitter_->count() != static_cast<int>(panes_.size())) {
        return keptPaneSizes_;
    }
    const QList<int> sizes = splitter_->sizes();
    return std::ranges::all_of(sizes, [](int size) { return size > 0; }) ? sizes : keptPaneSizes_;
}

void MainWindow::FollowFocus(QWidget* now) {
    if (now == nullptr || now->window() != this) {
        return;
    }
    // The keyboard is back in the window: the user is, too, whether or not a window manager
    // told the window that it is active.
    app_.OnActivate();
    QWidget* pane = ShowsPanes() ? PaneOf(now) : nullptr;
    if (pane != nullptr && pane != focusedPane_) {
        focusedPane_ = pane;
        app_.OnPaneFocused(pane);
    }
}

bool MainWindow::event(QEvent* event) {
    if (IsPrivateMessage(event->type())) {
        app_.OnPrivateMessage(*static_cast<PrivateMessageEvent*>(event));
        return true;
    }
    return QWidget::event(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched == this) {
        // Before the layout hands out the new width, so that the pane widths are taken as the
        // user left them rather than squeezed.
        ArrangeScreens();
    } else if (event->type() == QEvent::Expose && watched == windowHandle()) {
        // Only a window that was out of sight and is seen again; a menu closing over it
        // exposes part of a window that never left.
        const bool exposed = windowHandle()->isExposed();
        if (exposed && !exposed_) {
            app_.OnActivate();
        }
        exposed_ = exposed;
    } else if (event->type() == QEvent::KeyPress && ShowsPanes() && watched->isWidgetType() &&
               PaneOf(static_cast<QWidget*>(watched)) != nullptr) {
        if (const auto forward = TabDirection(*static_cast<QKeyEvent*>(event))) {
            app_.OnStepPane(*forward);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    SaveGeometry(*this, paneSizes());
    app_.OnDestroy();
    event->accept();
}

void MainWindow::changeEvent(QEvent* event) {
    const bool activated = event->type() == QEvent::ActivationChange && isActiveWindow();
    const bool restored = event->type() == QEvent::WindowStateChange && !isMinimized();
    if (activated || restored) {
        app_.OnActivate();
    }
    QWidget::changeEvent(event);
}

void MainWindow::showEvent(QShowEvent* event) {
    if (!isMinimized()) {
        app_.OnActivate();
    }
    QWidget::showEvent(event);
}

} // namespace qf::ui
