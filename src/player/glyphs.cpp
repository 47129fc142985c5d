#include "player/glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace clipfix {

namespace {

// All glyphs are drawn on a square of 24 by 24.
constexpr qreal kGrid = 24;
constexpr qreal kLine = 2;

QPen LineOf(const QColor& colour) {
    return {colour, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void DrawFilled(QPainter& painter, const QPainterPath& path, const QColor& colour) {
    // A round line of the same colour takes the sharpness from the corners.
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(colour);
    painter.drawPath(path);
}

void DrawPlay(QPainter& painter, const QColor& colour) {
    QPainterPath path(QPointF(8.2, 5.5));
    path.lineTo(19, 12);
    path.lineTo(8.2, 18.5);
    path.closeSubpath();
    DrawFilled(painter, path, colour);
}

void DrawPause(QPainter& painter, const QColor& colour) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(6.5, 5, 4, 14), 1.3, 1.3);
    painter.drawRoundedRect(QRectF(13.5, 5, 4, 14), 1.3, 1.3);
}

void DrawPlayAgain(QPainter& painter, const QColor& colour) {
    painter.setPen(LineOf(colour));
    painter.setBrush(Qt::NoBrush);
    // Angles of an arc are in sixteenths of a degree.
    painter.drawArc(QRectF(5, 5.5, 14, 14), 115 * 16, -310 * 16);
    QPainterPath head(QPointF(8.6, 2.6));
    head.lineTo(8.9, 6.9);
    head.lineTo(13.0, 6.4);
    painter.drawPath(head);
}

// Two angles that point to the left, or mirrored to the right.
void DrawAngles(QPainter& painter, const QColor& colour, bool toTheRight) {
    if (toTheRight) {
        painter.translate(kGrid, 0);
        painter.scale(-1, 1);
    }
    painter.setPen(LineOf(colour));
    painter.setBrush(Qt::NoBrush);
    for (const qreal left : {5.0, 11.5}) {
        QPainterPath angle(QPointF(left + 6, 6.5));
        angle.lineTo(left, 12);
        angle.lineTo(left + 6, 17.5);
        painter.drawPath(angle);
    }
}

void DrawSpeaker(QPainter& painter, const QColor& colour, int waves) {
    QPainterPath cone(QPointF(3.8, 9.6));
    cone.lineTo(6.8, 9.6);
    cone.lineTo(11.2, 5.9);
    cone.lineTo(11.2, 18.1);
    cone.lineTo(6.8, 14.4);
    cone.lineTo(3.8, 14.4);
    cone.closeSubpath();
    DrawFilled(painter, cone, colour);
    painter.setPen(LineOf(colour));
    painter.setBrush(Qt::NoBrush);
    if (waves >= 1) {
        painter.drawArc(QRectF(9.6, 8.5, 7, 7), -50 * 16, 100 * 16);
    }
    if (waves >= 2) {
        painter.drawArc(QRectF(7.6, 5, 14, 14), -50 * 16, 100 * 16);
    }
    if (waves == 0) {
        painter.drawLine(QPointF(15.5, 9.4), QPointF(20.7, 14.6));
        painter.drawLine(QPointF(20.7, 9.4), QPointF(15.5, 14.6));
    }
}

// Four corners, turned outwards or inwards.
void DrawCorners(QPainter& painter, const QColor& colour, bool outwards) {
    painter.setPen(LineOf(colour));
    painter.setBrush(Qt::NoBrush);
    for (int turn = 0; turn < 4; ++turn) {
        painter.save();
        painter.translate(kGrid / 2, kGrid / 2);
        painter.rotate(90 * turn);
        QPainterPath corner(QPointF(-7.5, -3));
        if (outwards) {
            corner.lineTo(-7.5, -7.5);
            corner.lineTo(-3, -7.5);
        } else {
            corner.lineTo(-3, -3);
            corner.lineTo(-3, -7.5);
        }
        painter.drawPath(corner);
        painter.restore();
    }
}

void DrawFilm(QPainter& painter, const QColor& colour) {
    painter.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2.7, 4.7, 18.6, 14.6), 2.2, 2.2);
    painter.drawLine(QPointF(6.6, 4.7), QPointF(6.6, 19.3));
    painter.drawLine(QPointF(17.4, 4.7), QPointF(17.4, 19.3));
    for (const qreal top : {8.4, 12.0, 15.6}) {
        painter.drawLine(QPointF(2.7, top), QPointF(6.6, top));
        painter.drawLine(QPointF(17.4, top), QPointF(21.3, top));
    }
}

void DrawOnGrid(QPainter& painter, Glyph glyph, const QColor& colour) {
    switch (glyph) {
        case Glyph::Play:
            return DrawPlay(painter, colour);
        case Glyph::Pause:
            return DrawPause(painter, colour);
        case Glyph::PlayAgain:
            return DrawPlayAgain(painter, colour);
        case Glyph::Backward:
            return DrawAngles(painter, colour, false);
        case Glyph::Forward:
            return DrawAngles(painter, colour, true);
        case Glyph::SoundOn:
        case Glyph::Sound:
            return DrawSpeaker(painter, colour, 2);
        case Glyph::SoundLow:
            return DrawSpeaker(painter, colour, 1);
        case Glyph::SoundOff:
            return DrawSpeaker(painter, colour, 0);
        case Glyph::FullScreen:
            return DrawCorners(painter, colour, true);
        case Glyph::LeaveFullScreen:
            return DrawCorners(painter, colour, false);
        case Glyph::Film:
            return DrawFilm(painter, colour);
    }
}

}  // namespace

void DrawGlyph(QPainter& painter, Glyph glyph, const QRectF& target, const QColor& colour) {
    const qreal side = std::min(target.width(), target.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(target.center() - QPointF(side / 2, side / 2));
    painter.scale(side / kGrid, side / kGrid);
    DrawOnGrid(painter, glyph, colour);
    painter.restore();
}

}  // namespace clipfix
