#include "ui/UiScale.h"

#include <QFontMetricsF>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace qf::ui {

namespace {

constexpr double kHandheldFontHeight = 13.0;

} // namespace

double HandheldScale(const QWidget* widget) {
    return std::max(1.0, QFontMetricsF(widget->font()).height() / kHandheldFontHeight);
}

int Scaled(int handheldPixels, const QWidget* widget) {
    return static_cast<int>(std::lround(handheldPixels * HandheldScale(widget)));
}

} // namespace qf::ui
