#include "ui/IntervalEdit.h"

#include "model/UpdateInterval.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QSpinBox>

namespace qf::ui {

namespace {

// Enough for a year in minutes; an interval of 0 would make the channel due at every look.
constexpr int kLeastValue = 1;
constexpr int kMostValue = 999999;
constexpr int32_t kSecondsPerMinute = 60;

} // namespace

IntervalEdit::IntervalEdit(QWidget* parent)
    : QWidget(parent), value_(new QSpinBox(this)), unit_(new QComboBox(this)) {
    value_->setRange(kLeastValue, kMostValue);
    value_->setAccessibleName(QStringLiteral("Interval"));
    unit_->setAccessibleName(QStringLiteral("Unit"));
    // In the store's numbering, which the entries' indexes follow.
    unit_->addItem(QStringLiteral("minutes"), kUnitMinutes);
    unit_->addItem(QStringLiteral("hours"), kUnitHours);
    unit_->addItem(QStringLiteral("days"), kUnitDays);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(value_);
    layout->addWidget(unit_);
    layout->addStretch();
}

void IntervalEdit::SetInterval(int32_t value, int32_t unit) {
    int index = unit_->findData(unit);
    if (index < 0) {
        const int64_t seconds = IntervalSeconds(value, unit);
        value = static_cast<int32_t>((seconds + kSecondsPerMinute - 1) / kSecondsPerMinute);
        index = unit_->findData(kUnitMinutes);
    }
    value_->setValue(value);
    unit_->setCurrentIndex(index);
}

int32_t IntervalEdit::value() const {
    return value_->value();
}

int32_t IntervalEdit::unit() const {
    return unit_->currentData().toInt();
}

} // namespace qf::ui
