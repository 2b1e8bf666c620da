#include "ui/DialogParts.h"

#include "ui/UiScale.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>

namespace qf::ui {

namespace {

// The handheld's screen was 240 pixels wide; a dialog is never narrower than that, scaled.
constexpr int kHandheldDialogWidth = 240;
// Wider than this the parent is a desktop window and the dialog stays its own modest size.
constexpr int kPhoneWidthLimit = 600;

} // namespace

QLabel* BoldLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

QDialogButtonBox* DoneCancelButtons(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Done"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

void SizeLikeHandheldDialog(QDialog* dialog) {
    const QWidget* window =
        dialog->parentWidget() != nullptr ? dialog->parentWidget()->window() : nullptr;
    if (window != nullptr && window->width() <= kPhoneWidthLimit) {
        dialog->resize(window->size());
        return;
    }
    dialog->setMinimumWidth(Scaled(kHandheldDialogWidth, dialog) * 2);
}

} // namespace qf::ui
