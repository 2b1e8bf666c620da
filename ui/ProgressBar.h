#pragma once

#include <QWidget>

class QProgressBar;
class QToolButton;

namespace qf {
class ChannelStore;
}

namespace qf::ui {

// The thin control a screen shows along its bottom while a refresh runs: a bar with one line of
// text drawn over it so that the text stays readable over the filled and the empty part, and a
// square stop button that asks the refresh to stop. A screen reader hears the bar named by its text
// and described by its value, and the button as "Stop refresh".
class ProgressBar : public QWidget {
    Q_OBJECT

public:
    ProgressBar(ChannelStore& store, QWidget* parent);

    // The line over the bar, at most 259 characters; nothing is drawn while it is empty.
    void SetText(const QString& text);
    QString text() const { return text_; }
    void SetRange(int low, int high);
    void SetPosition(int position);

    // The height the owning screen gives the control.
    int PreferredHeight() const;

    QProgressBar* bar() const { return bar_; }
    QToolButton* stopButton() const { return stopButton_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int BarHeight() const;
    void Stop();
    void DescribeValue();

    ChannelStore& store_;
    QString text_;
    QProgressBar* bar_;
    QToolButton* stopButton_;
};

// The column at which the filled part of a bar `width` pixels wide ends: the width in proportion
// of position to range (the position is taken as it is, not less the low end), the middle when
// the range is empty, one further right when the width is odd.
int SplitColumn(int left, int width, int low, int high, int position);

} // namespace qf::ui
