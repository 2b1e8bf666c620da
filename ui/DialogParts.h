#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;
class QLabel;
class QWidget;

namespace qf::ui {

// What the program's small dialogs share: captions of their boxes in the bold variant of the
// dialog font, a "Done" and a "Cancel" button in place of the handheld's soft keys, and a size
// that fills a phone's screen the way the handheld's full-screen dialogs did while staying a
// modest box on a desktop.
QLabel* BoldLabel(const QString& text, QWidget* parent);
QDialogButtonBox* DoneCancelButtons(QDialog* dialog);
void SizeLikeHandheldDialog(QDialog* dialog);

} // namespace qf::ui
