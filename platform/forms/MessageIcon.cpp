#include "platform/forms/MessageIcon.h"

#include <QIconEngine>
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

/// Draws a sign in the size that is asked for.
class SignEngine final : public QIconEngine {
public:
    explicit SignEngine(const Sign& sign)
        : m_sign(sign) {}

    void paint(QPainter* painter, const QRect& place, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(place.topLeft());
        painter->scale(place.width() / Units, place.height() / Units);
        painter->setPen(QPen(m_sign.ground, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)); // round corners
        painter->setBrush(m_sign.ground);
        painter->drawPath(m_sign.outline);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(m_sign.mark, StrokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(m_sign.strokes);
        painter->setPen(Qt::NoPen);
        painter->setBrush(m_sign.mark);
        if (!m_sign.dot.isNull())
            painter->drawEllipse(m_sign.dot, StrokeWidth * 0.6, StrokeWidth * 0.6);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent); // the toolkit's own starts with what the memory holds
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new SignEngine(m_sign); }

private:
    const Sign& m_sign; ///< of the table
};

} // namespace

QIcon MessageIcon(QStyle::StandardPixmap which) {
    for (const Sign& sign : Signs())
        if (sign.which == which && !QIcon::hasThemeIcon(sign.themeName))
            return QIcon(new SignEngine(sign));
    return {};
}

} // namespace forms
