#include "shell/skin/pictures.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <array>
#include <string_view>

#include "shell/skin/palette.h"

// The macro must stand outside every namespace.
static void InitShellResources() {
    Q_INIT_RESOURCE(shell);
}

namespace clipfix::skin {

namespace {

struct PictureRow {
    int id;
    std::string_view name;
};

constexpr std::array kPictures{
    PictureRow{kCommandNormal, "command_normal"},
    PictureRow{kCommandHover, "command_hover"},
    PictureRow{kCommandPressed, "command_pressed"},
    PictureRow{kCommandDisabled, "command_disabled"},
    PictureRow{kQuietNormal, "quiet_normal"},
    PictureRow{kQuietHover, "quiet_hover"},
    PictureRow{kClose, "close"},
    PictureRow{kClose + 1, "close_hover"},
    PictureRow{kMinimise, "minimise"},
    PictureRow{kMinimise + 1, "minimise_hover"},
    PictureRow{kMaximise, "maximise"},
    PictureRow{kMaximise + 1, "maximise_hover"},
    PictureRow{kRestore, "restore"},
    PictureRow{kRestore + 1, "restore_hover"},
    PictureRow{kProgramMenu, "menu"},
    PictureRow{kProgramMenu + 1, "menu_hover"},
    PictureRow{kHelpMenu, "help"},
    PictureRow{kHelpMenu + 1, "help_hover"},
    PictureRow{kHome, "home"},
    PictureRow{kHome + 1, "home_hover"},
    PictureRow{kPlay, "play"},
    PictureRow{kPlay + 1, "play_hover"},
    PictureRow{kMark, "mark"},
    PictureRow{kMark + 1, "mark"},
    PictureRow{kQuestionPicture, "question"},
    PictureRow{kInformationPicture, "information"},
    PictureRow{kBusyRepair, "busy_repair"},
    PictureRow{kBusySave, "busy_save"},
};

// A face is drawn in a square of this many logical pixels and cut in nine.
constexpr int kFaceSize = 40;
constexpr qreal kFaceEdge = 10;

}  // namespace

void LoadPictures() {
    InitShellResources();
}

QString PictureFile(int id) {
    for (const PictureRow& row : kPictures) {
        if (row.id == id) {
            return QStringLiteral(":/skin/%1.svg")
                .arg(QLatin1String(row.name.data(), static_cast<int>(row.name.size())));
        }
    }
    return {};
}

QPixmap Picture(int id, QSize size, qreal scale) {
    const QString key = QStringLiteral("clipfix/%1/%2x%3@%4")
                            .arg(id)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(scale);
    QPixmap drawn;
    if (QPixmapCache::find(key, &drawn)) {
        return drawn;
    }
    const QString file = PictureFile(id);
    const QSize pixels = (QSizeF(size) * scale).toSize();
    if (file.isEmpty() || pixels.isEmpty()) {
        return {};
    }
    QSvgRenderer renderer(file);
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(pixels)));
    painter.end();
    drawn = QPixmap::fromImage(image);
    drawn.setDevicePixelRatio(scale);
    QPixmapCache::insert(key, drawn);
    return drawn;
}

void DrawFace(QPainter& painter, const QRectF& target, int id) {
    const qreal scale = painter.device()->devicePixelRatioF();
    const QPixmap face = Picture(id, QSize(kFaceSize, kFaceSize), scale);
    if (face.isNull()) {
        return;
    }
    const qreal edge = std::min({kFaceEdge, target.width() / 2, target.height() / 2});
    // Cuts along one side: in the target in logical pixels, in the picture in device pixels.
    const std::array<qreal, 4> toX{target.left(), target.left() + edge, target.right() - edge,
                                   target.right()};
    const std::array<qreal, 4> toY{target.top(), target.top() + edge, target.bottom() - edge,
                                   target.bottom()};
    const qreal side = kFaceSize * scale;
    const std::array<qreal, 4> from{0, kFaceEdge * scale, side - kFaceEdge * scale, side};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const QRectF piece(QPointF(toX[column], toY[row]),
                               QPointF(toX[column + 1], toY[row + 1]));
            const QRectF source(QPointF(from[column], from[row]),
                                QPointF(from[column + 1], from[row + 1]));
            painter.drawPixmap(piece, face, source);
        }
    }
}

void DrawFocusMark(QPainter& painter, const QRectF& target, qreal radius) {
    constexpr qreal kWidth = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    // A light line inside the coloured one keeps the mark visible on every face.
    const QRectF outer = target.adjusted(kWidth / 2, kWidth / 2, -kWidth / 2, -kWidth / 2);
    painter.setPen(QPen(Colour(kFocus), kWidth));
    painter.drawRoundedRect(outer, radius, radius);
    const QRectF inner = outer.adjusted(1.75, 1.75, -1.75, -1.75);
    painter.setPen(QPen(Colour(kFaceText), 1.5));
    painter.drawRoundedRect(inner, radius - 1, radius - 1);
    painter.restore();
}

}  // namespace clipfix::skin
