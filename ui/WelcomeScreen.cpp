#include "ui/WelcomeScreen.h"

#include "render/WelcomePage.h"
#include "ui/CommandIds.h"
#include "ui/HtmlView.h"
#include "ui/SvgImages.h"
#include "ui/UiScale.h"

#include <QVBoxLayout>

namespace qf::ui {

WelcomeScreen::WelcomeScreen(QObject* frame, DeviceFamily family, QWidget* parent)
    : QWidget(parent), family_(family), view_(new HtmlView(frame, kCtlNone, this)) {
    setObjectName(QStringLiteral("QFWelcomeWnd"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    setFocusProxy(view_);
    // The page names its one picture "qf_logo.bmp", but every picture it asks for is the logo.
    view_->SetImageSupplier([this](const QUrl&) { return LogoImage(); });
}

void WelcomeScreen::ShowPage() {
    shownLogo_ = logo();
    view_->SetPage(BuildWelcomePage(family_.smartphone, family_.platformCode), true);
}

int WelcomeScreen::logo() const {
    return WelcomeLogo(width());
}

QImage WelcomeScreen::LogoImage() const {
    const QString resource = logo() == kWelcomeLogoSmall ? QStringLiteral(":/icons/logo-small.svg")
                                                         : QStringLiteral(":/icons/logo-large.svg");
    const QSize size = SvgSize(resource) * HandheldScale(this);
    return RenderSvgImage(resource, size, devicePixelRatioF());
}

void WelcomeScreen::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // A page shown before the screen had its width may name the wrong logo.
    if (shownLogo_ != 0 && shownLogo_ != logo()) {
        ShowPage();
    }
}

} // namespace qf::ui
