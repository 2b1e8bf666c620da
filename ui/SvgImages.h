#pragma once

#include <QImage>
#include <QPixmap>
#include <QSize>
#include <QString>

namespace qf::ui {

// The program's pictures are SVG drawings in its resources; these render one at a logical size
// for a screen of the given device pixel ratio, sharp on high-density screens. A missing drawing
// gives a null picture.
QImage RenderSvgImage(const QString& resource, QSize logicalSize, qreal devicePixelRatio);
QPixmap RenderSvgPixmap(const QString& resource, QSize logicalSize, qreal devicePixelRatio);
// The drawing's own size, in logical pixels; empty when it is missing.
QSize SvgSize(const QString& resource);

} // namespace qf::ui
