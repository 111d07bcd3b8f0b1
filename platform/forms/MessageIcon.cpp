#include "platform/forms/MessageIcon.h"

#include <QPainter>
#include <QPainterPath>

#include <vector>

namespace forms {

namespace {

/// Drawn on a square of 48 units.
struct Sign {
    QStyle::StandardPixmap which;
    QString themeName;
    QColor ground;
    QColor mark;
    QPainterPath outline;
    QPainterPath strokes; ///< of the mark
    QPointF dot;          ///< null: none
};

constexpr qreal Units = 48;
constexpr qreal StrokeWidth = 4.5;

QPainterPath Disc() {
    QPainterPath path;
    path.addEllipse(QPointF(24, 24), 21, 21);
    return path;
}

QPainterPath Triangle() {
    QPainterPath path;
    path.addPolygon(QPolygonF{QPointF(24, 7), QPointF(43, 40), QPointF(5, 40), QPointF(24, 7)});
    return path;
}

QPainterPath Line(QPointF from, QPointF to) {
    QPainterPath path(from);
    path.lineTo(to);
    return path;
}

QPainterPath Cross() {
    QPainterPath path = Line({17, 17}, {31, 31});
    path.addPath(Line({31, 17}, {17, 31}));
    return path;
}

QPainterPath Hook() {
    QPainterPath path(QPointF(17.5, 19));
    path.cubicTo(17.5, 10, 30.5, 10, 30.5, 18.5);
    path.cubicTo(30.5, 23.5, 24, 23.5, 24, 28.5);
    return path;
}

const std::vector<Sign>& Signs() {
    static const QColor white(Qt::white);
    static const QColor blue(0x2f, 0x75, 0xb5);
    static const std::vector<Sign> signs = {
        {QStyle::SP_MessageBoxCritical,
         QStringLiteral("dialog-error"),
         QColor(0xc9, 0x35, 0x2e),
         white,
         Disc(),
         Cross(),
         {}},
        {QStyle::SP_MessageBoxQuestion,
         QStringLiteral("dialog-question"),
         blue,
         white,
         Disc(),
         Hook(),
         {24, 35.5}},
        {QStyle::SP_MessageBoxWarning,
         QStringLiteral("dialog-warning"),
         QColor(0xf2, 0xa9, 0x1e),
         QColor(0x3b, 0x2a, 0x00),
         Triangle(),
         Line({24, 19}, {24, 28}),
         {24, 35}},
        {QStyle::SP_MessageBoxInformation,
         QStringLiteral("dialog-information"),
         blue,
         white,
         Disc(),
         Line({24, 23}, {24, 35}),
         {24, 14.5}},
    };
    return signs;
}

QPixmap Drawn(const Sign& sign, int size) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / Units, size / Units);
    painter.setPen(QPen(sign.ground, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)); // round corners
    painter.setBrush(sign.ground);
    painter.drawPath(sign.outline);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(sign.mark, StrokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(sign.strokes);
    painter.setPen(Qt::NoPen);
    painter.setBrush(sign.mark);
    if (!sign.dot.isNull())
        painter.drawEllipse(sign.dot, StrokeWidth * 0.6, StrokeWidth * 0.6);
    return picture;
}

} // namespace

QIcon MessageIcon(QStyle::StandardPixmap which) {
    QIcon icon;
    for (const Sign& sign : Signs())
        if (sign.which == which && !QIcon::hasThemeIcon(sign.themeName))
            for (const int size : {24, 32, 48, 64, 72, 96, 128, 192, 256}) // of the scales that screens have
                icon.addPixmap(Drawn(sign, size));
    return icon;
}

} // namespace forms
