#pragma once

#include <QWidget>
#include <cstdint>

class QComboBox;
class QSpinBox;

namespace qf::ui {

// A time between updates as a whole number and its unit (minutes, hours or days), the units
// numbered as the store keeps them.
class IntervalEdit : public QWidget {
    Q_OBJECT

public:
    explicit IntervalEdit(QWidget* parent);

    // A unit the box does not offer (the store counts it as seconds) shows as whole minutes,
    // rounded up.
    void SetInterval(int32_t value, int32_t unit);
    int32_t value() const;
    int32_t unit() const;

    QSpinBox* valueBox() const { return value_; }
    QComboBox* unitBox() const { return unit_; }

private:
    QSpinBox* value_;
    QComboBox* unit_;
};

} // namespace qf::ui
