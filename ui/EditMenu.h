#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <memory>

class QAction;
class QMenu;
class QMouseEvent;

namespace qf::ui {

// The clipboard menu of the program's text boxes: "Cu&t", "&Copy", "&Paste", "C&lear" and
// "&Select All", opened with the right button, the Menu key, Shift+F10, or by holding a finger
// (or the left button) on the box. Only plain text goes to and comes from the clipboard.
class EditMenu : public QObject {
    Q_OBJECT

public:
    explicit EditMenu(QWidget* owner);
    ~EditMenu() override;

    // Gives `box` the menu; giving it twice changes nothing.
    void Attach(QLineEdit* box);
    // Gives the menu to every text box (spin boxes included) under `root`, and again each time
    // `root` is shown, so that boxes added after this call are covered too.
    void AttachUnder(QWidget* root);

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
    void AttachBoxes(QWidget* root);
    // The Menu key, Shift+F10 and the platform's requests for a menu, sent to `watched` (the box,
    // or the spin box around it).
    bool FilterRequest(QWidget* watched, QLineEdit* box, QEvent* event);
    bool FilterMouse(QLineEdit* box, QEvent* event);
    void HoldBack(QLineEdit* box, const QMouseEvent& press);
    void PassHeldPress();
    void OpenOnHold();

    QWidget* owner_;
    QMenu* menu_ = nullptr;
    QAction* cut_ = nullptr;
    QAction* copy_ = nullptr;
    QAction* paste_ = nullptr;
    QAction* clear_ = nullptr;
    QAction* selectAll_ = nullptr;
    QPointer<QLineEdit> target_;
    // A press held still this long opens the menu. Until then the press is kept from the box,
    // which would otherwise drop its selection before the menu could act on it; it reaches the
    // box late when the button is let go or the pointer moves away.
    QTimer hold_;
    QPointer<QLineEdit> holdBox_;
    std::unique_ptr<QMouseEvent> heldPress_;
    // The release that ends a hold belongs to the menu the hold opened, not to the box.
    bool swallowRelease_ = false;
    bool passingPress_ = false;
};

// Gives every text box under `root` (a dialog, a wizard, a page) the clipboard menu, now and
// whenever `root` is shown again; the menu belongs to `root`. Every dialog of the program is
// given it this way when it is run.
EditMenu* AttachEditMenus(QWidget* root);

} // namespace qf::ui
