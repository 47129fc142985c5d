#include "shell/skin/pictures.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
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
    PictureRow{kHealthyFilm, "healthy"},
    PictureRow{kQuestionPicture, "question"},
    PictureRow{kInformationPicture, "information"},
    PictureRow{kBusyRepair, "busy_repair"},
    PictureRow{kBusySave, "busy_save"},
};

// A face is drawn in a square of this many logical pixels and cut in nine.
constexpr int kFaceSize = 40;
constexpr qreal kFaceEdge = 10;

QRect Between(int left, int top, int right, int bottom) {
    return {left, top, right - left, bottom - top};
}

// The vector picture drawn into so many device pixels. The file must exist.
QImage Render(int id, QSize pixels) {
    QSvgRenderer renderer(PictureFile(id));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(pixels)));
    return image;
}

// What `make` makes for `size` logical pixels, once for each size and scale. Null for an unknown
// number and for a size of nothing.
QPixmap Cached(int id, const QString& kind, QSize size, qreal scale,
               const std::function<QImage(QSize pixels)>& make) {
    const QString key = QStringLiteral("clipfix/%1/%2/%3x%4@%5")
                            .arg(kind)
                            .arg(id)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(scale);
    QPixmap made;
    const QSize pixels = (QSizeF(size) * scale).toSize();
    if (QPixmapCache::find(key, &made) || PictureFile(id).isEmpty() || pixels.isEmpty()) {
        return made;
    }
    made = QPixmap::fromImage(make(pixels));
    made.setDevicePixelRatio(scale);
    QPixmapCache::insert(key, made);
    return made;
}

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
    return Cached(id, QStringLiteral("picture"), size, scale,
                  [id](QSize pixels) { return Render(id, pixels); });
}

// The corners keep their size, edges and middle stretch. Cuts are whole device pixels on both
// sides, so that no seam shows at any scale.
void DrawFace(QPainter& painter, const QRectF& target, int id) {
    const qreal scale = painter.device()->devicePixelRatioF();
    const auto make = [id, scale](QSize pixels) {
        const int side = static_cast<int>(std::lround(kFaceSize * scale));
        const QImage face = Render(id, QSize(side, side));
        const int edge = std::min({static_cast<int>(std::ceil(kFaceEdge * scale)), side / 2,
                                   pixels.width() / 2, pixels.height() / 2});
        const std::array<int, 4> from{0, edge, side - edge, side};
        const std::array<int, 4> toX{0, edge, pixels.width() - edge, pixels.width()};
        const std::array<int, 4> toY{0, edge, pixels.height() - edge, pixels.height()};
        QImage stretched(pixels, QImage::Format_ARGB32_Premultiplied);
        stretched.fill(Qt::transparent);
        QPainter pieces(&stretched);
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column) {
                pieces.drawImage(Between(toX[column], toY[row], toX[column + 1], toY[row + 1]),
                                 face,
                                 Between(from[column], from[row], from[column + 1], from[row + 1]));
            }
        }
        return stretched;
    };
    painter.drawPixmap(target.topLeft(),
                       Cached(id, QStringLiteral("face"), target.size().toSize(), scale, make));
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
