#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

class QAction;
class QMenu;

namespace qf::ui {

// The clipboard menu of a dialog's text boxes: "Cu&t", "&Copy", "&Paste", "C&lear" and
// "&Select All", opened with the right button or by holding a finger (or the left button) on the
// box. Only plain text goes to and comes from the clipboard.
class EditMenu : public QObject {
    Q_OBJECT

public:
    explicit EditMenu(QWidget* owner);

    // Gives every text box on `page` the menu; the menu belongs to the page.
    static EditMenu* AttachToPage(QWidget* page);
    void Attach(QLineEdit* box);

    // Opens the menu for `box` at `point` (in the box's coordinates).
    void Show(QLineEdit* box, QPoint point);
    // Built on first use.
    QMenu* menu();
    // The box the menu was last opened for.
    QLineEdit* target() const { return target_; }

    // What the entries do to a box; each does nothing when its entry would be greyed.
    static void Cut(QLineEdit* box);
    static void Copy(QLineEdit* box);
    static void Paste(QLineEdit* box);
    static void Clear(QLineEdit* box);
    static void SelectAll(QLineEdit* box);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildMenu();
    void UpdateEntries();
    void StartHold(QLineEdit* box, QPoint point);

    QWidget* owner_;
    QMenu* menu_ = nullptr;
    QAction* cut_ = nullptr;
    QAction* copy_ = nullptr;
    QAction* paste_ = nullptr;
    QAction* clear_ = nullptr;
    QAction* selectAll_ = nullptr;
    QPointer<QLineEdit> target_;
    // A press held still this long opens the menu.
    QTimer hold_;
    QPointer<QLineEdit> holdBox_;
    QPoint holdPoint_;
};

} // namespace qf::ui
