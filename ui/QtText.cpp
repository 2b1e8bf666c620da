#include "ui/QtText.h"

#include <QTextDocumentFragment>

namespace qf::ui {

QString PlainTextOfHtml(std::u16string_view html) {
    return QTextDocumentFragment::fromHtml(ToQString(html)).toPlainText().simplified();
}

} // namespace qf::ui
