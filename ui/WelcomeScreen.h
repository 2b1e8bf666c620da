#pragma once

#include "ui/DeviceFamily.h"

#include <QWidget>

namespace qf::ui {

class HtmlView;

// The first-run screen: the greeting page with the product logo, large or small by the screen's
// width, in an HTML view.
class WelcomeScreen : public QWidget {
    Q_OBJECT

public:
    WelcomeScreen(QObject* frame, DeviceFamily family, QWidget* parent);

    // Builds the greeting and shows it.
    void ShowPage();

    HtmlView* view() const { return view_; }
    // The logo bitmap number the screen supplies at its present width.
    int logo() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QImage LogoImage() const;

    DeviceFamily family_;
    HtmlView* view_;
    int shownLogo_ = 0;
};

} // namespace qf::ui
