#include "ui/SvgImages.h"

#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

namespace qf::ui {

QImage RenderSvgImage(const QString& resource, QSize logicalSize, qreal devicePixelRatio) {
    QSvgRenderer renderer(resource);
    if (!renderer.isValid() || logicalSize.isEmpty()) {
        return {};
    }
    const QSize pixels(static_cast<int>(std::ceil(logicalSize.width() * devicePixelRatio)),
                       static_cast<int>(std::ceil(logicalSize.height() * devicePixelRatio)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

QPixmap RenderSvgPixmap(const QString& resource, QSize logicalSize, qreal devicePixelRatio) {
    return QPixmap::fromImage(RenderSvgImage(resource, logicalSize, devicePixelRatio));
}

QSize SvgSize(const QString& resource) {
    QSvgRenderer renderer(resource);
    return renderer.isValid() ? renderer.defaultSize() : QSize();
}

} // namespace qf::ui
