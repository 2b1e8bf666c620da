#pragma once

#include <QList>
#include <QWidget>
#include <array>

class QSplitter;
class QStackedWidget;

namespace qf::ui {

class App;
class SoftKeyBar;

// The program's one top-level window, titled "Quillfeed": the current screen above the soft-key
// bar. When the window is wide enough the three list-and-story screens stand side by side as
// panes, and the one with the keyboard focus counts as the current screen; narrower, one screen
// shows at a time. It passes what happens to it (private messages, the Back and Tab keys,
// activation, the focus moving between panes, closing) to the frame, and keeps its geometry and
// the pane widths for the next run.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    // From this width on the panes stand side by side.
    static constexpr int kWideWidth = 840;

    explicit MainWindow(App& app);
    ~MainWindow() override;

    // A screen that always fills the window.
    void AddScreen(QWidget* screen);
    // The screens that become panes, left to right, when the window is wide.
    void AddPanes(const std::array<QWidget*, 3>& panes);
    // Shows the screen: alone when narrow; as a pane, given the focus, when wide.
    void ShowScreen(QWidget* screen);
    // The screen shown alone, or the pane that has (or last had) the focus.
    QWidget* currentScreen() const;
    bool panesSideBySide() const { return wide_; }
    QSplitter* panes() const { return splitter_; }
    SoftKeyBar* softKeys() const { return softKeys_; }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void AddAccelerators();
    // Puts the panes side by side or back among the single screens as the width asks, keeping
    // the shown screen and the focus.
    void ArrangeScreens();
    void PlacePanes(bool wide);
    QWidget* PaneOf(const QWidget* widget) const;
    bool ShowsPanes() const;
    // The focus moved: the window is in use again, and a pane may have become the current one.
    void FollowFocus(QWidget* now);
    QList<int> paneSizes() const;

    App& app_;
    QStackedWidget* screens_;
    // The stack's page that holds the panes while the window is wide.
    QSplitter* splitter_;
    SoftKeyBar* softKeys_;
    std::array<QWidget*, 3> panes_{};
    QWidget* focusedPane_ = nullptr;
    bool wide_ = false;
    // Whether the window system last said the window can be seen.
    bool exposed_ = false;
    // The pane widths to use when the panes next stand side by side.
    QList<int> keptPaneSizes_;
};

} // namespace qf::ui
