#pragma once

#include <QWidget>

class QStackedWidget;

namespace qf::ui {

class App;
class SoftKeyBar;

// The program's one top-level window, titled "Quillfeed": the current screen above the soft-key
// bar. It passes what happens to it (private messages, the Back key, activation, closing) to the
// frame, and keeps its geometry for the next run.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(App& app);

    void AddScreen(QWidget* screen);
    void ShowScreen(QWidget* screen);
    QWidget* currentScreen() const;
    SoftKeyBar* softKeys() const { return softKeys_; }

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void AddAccelerators();

    App& app_;
    QStackedWidget* screens_;
    SoftKeyBar* softKeys_;
};

} // namespace qf::ui
