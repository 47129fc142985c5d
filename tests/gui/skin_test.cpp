#include <QApplication>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>
#include <cmath>

#include "gui/gui_support.h"
#include "shell/skin/fonts.h"
#include "shell/skin/palette.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

class SkinTest : public QObject {
    Q_OBJECT

    // The middle row of a face is of one colour from one side edge to the other.
    static bool HasNoSeam(int id, int left, qreal scale) {
        QPixmap ground((QSizeF(160, 60) * scale).toSize());
        ground.setDevicePixelRatio(scale);
        ground.fill(Qt::white);
        QPainter painter(&ground);
        painter.translate(left, 7);
        skin::DrawFace(painter, QRectF(0, 0, 121, 35), id);
        painter.end();
        const QImage image = ground.toImage();
        const int row = static_cast<int>(24 * scale);
        const QColor colour = image.pixelColor(static_cast<int>((left + 60) * scale), row);
        for (auto x = static_cast<int>((left + 3) * scale); x < (left + 118) * scale; ++x) {
            if (image.pixelColor(x, row) != colour) {
                return false;
            }
        }
        return colour != QColor(Qt::white) || id == skin::kQuietNormal;
    }

  private Q_SLOTS:
    void ColourValuesHaveRedInTheLowByte() {
        QCOMPARE(skin::Colour(skin::kText), QColor(0x4B, 0x4B, 0x4B));
        QCOMPARE(skin::Colour(skin::kSectionTop), QColor(0xF7, 0xF7, 0xF7));
        QCOMPARE(skin::Colour(skin::kSelectedText), QColor(0x22, 0x8B, 0x22));
        QCOMPARE(skin::Colour(skin::kLink), QColor(0x0C, 0x6F, 0xAD));
        QCOMPARE(skin::Colour(skin::kBarFill), QColor(0x00, 0x87, 0xEF));
        QCOMPARE(skin::Colour(skin::kBarTrough), QColor(0xF7, 0xF7, 0xF7));
        QCOMPARE(skin::Colour(skin::kWarningText), QColor(0xFF, 0x00, 0x00));
        QCOMPARE(skin::Colour(skin::kBand), QColor(0xEB, 0xEB, 0xEB));
        QCOMPARE(skin::Colour(skin::kFrame), QColor(0xAC, 0xAC, 0xAC));
    }

    void EveryRoleHasAPicture() {
        QList<int> ids{22906, 22907, 22916, 22926};
        for (int id = 900; id <= 905; ++id) {
            ids << id;
        }
        for (int id = 400; id <= 418; ++id) {
            ids << id;
        }
        for (const int id : ids) {
            QSvgRenderer renderer(skin::PictureFile(id));
            QVERIFY2(renderer.isValid(), qPrintable(QString::number(id)));
        }
        QVERIFY(skin::PictureFile(906).isEmpty());
        QVERIFY(skin::Picture(906, QSize(10, 10), 1).isNull());
    }

    void PicturesAreDrawnForTheDevicePixelsOfTheScreen() {
        for (const qreal scale : {1.0, 1.25, 1.5, 2.0}) {
            const QPixmap picture = skin::Picture(skin::kQuestionPicture, QSize(70, 62), scale);
            QCOMPARE(picture.size(), (QSizeF(70, 62) * scale).toSize());
            QCOMPARE(picture.devicePixelRatio(), scale);
        }
        // Twice the pixels are not the same pixels twice.
        const QImage one = skin::Picture(skin::kClose, QSize(24, 24), 1).toImage();
        const QImage two = skin::Picture(skin::kClose, QSize(24, 24), 2).toImage();
        QVERIFY(one.scaled(48, 48) != two);
    }

    void AFaceKeepsItsCornersAndFillsItsTarget() {
        QImage image(200, 60, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        skin::DrawFace(painter, QRectF(0, 0, 200, 60), skin::kCommandNormal);
        painter.end();
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(image.pixelColor(199, 59).alpha(), 0);
        QCOMPARE(image.pixelColor(100, 30), QColor(0x0C, 0x6F, 0xAD));
        QCOMPARE(image.pixelColor(20, 10), QColor(0x0C, 0x6F, 0xAD));
        for (int x = 8; x < 192; ++x) {
            QCOMPARE(image.pixelColor(x, 30).alpha(), 255);
        }
    }

    // Wherever a button stands: at a broken scale its edges fall between two device pixels.
    void AFaceHasNoSeamAtAnyScale() {
        for (const qreal scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            for (int id = 900; id <= 905; ++id) {
                for (int left = 0; left < 16; ++left) {
                    QVERIFY2(
                        HasNoSeam(id, left, scale),
                        qPrintable(QStringLiteral("%1 at %2, %3").arg(id).arg(left).arg(scale)));
                }
            }
        }
    }

    void AFontsLineFitsItsHeightAndTheNextSizeDoesNot() {
        for (const int height : {15, 20, 25, 35}) {
            for (const char* face : {"Segoe UI", "Segoe UI Semibold", "Trebuchet MS"}) {
                QFont font = skin::FontOfHeight(QString::fromLatin1(face), height);
                const auto line = [&] {
                    const QFontMetricsF metrics(font);
                    return std::ceil(metrics.ascent()) + std::ceil(metrics.descent());
                };
                QVERIFY(line() <= height);
                font.setPixelSize(font.pixelSize() + 1);
                QVERIFY(line() > height);
            }
        }
    }

    void AFaceThatIsNotInstalledIsReplacedByAMatchingOne() {
        if (QFontDatabase::families().contains(QStringLiteral("Segoe UI"))) {
            QSKIP("the face itself is installed");
        }
        QVERIFY2(QFontDatabase::families().contains(QStringLiteral("Open Sans")),
                 "the package fonts-open-sans is missing");
        QCOMPARE(skin::FontOfHeight(QStringLiteral("Segoe UI"), 20).family(),
                 QStringLiteral("Open Sans"));
        QCOMPARE(skin::FontOfHeight(QStringLiteral("Segoe UI Semibold"), 20).weight(),
                 QFont::DemiBold);
        QCOMPARE(skin::FontOfHeight(QStringLiteral("Segoe UI"), 20).weight(), QFont::Normal);
    }

    void TheDialogsFaceFollowsTheSystemsMajorVersion() {
        QCOMPARE(skin::DialogFace(true), QStringLiteral("Segoe UI"));
        QCOMPARE(skin::DialogFace(false), QStringLiteral("Trebuchet MS"));
    }

    void ATextIsMadeSmallerUntilItFitsButNotBelowItsSmallestLine() {
        const QString words = QStringLiteral("a rather long label");
        const QString face = QStringLiteral("Segoe UI");
        const QFont roomy = skin::FontThatFits(face, 35, words, 2000, 13);
        QCOMPARE(roomy.pixelSize(), skin::FontOfHeight(face, 35).pixelSize());
        const QFont tight = skin::FontThatFits(face, 35, words, 150, 13);
        QVERIFY(QFontMetrics(tight).horizontalAdvance(words) <= 150);
        const QFont hopeless = skin::FontThatFits(face, 35, words, 1, 13);
        QCOMPARE(hopeless.pixelSize(), skin::FontOfHeight(face, 13).pixelSize());
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    clipfix::test::PrepareLook(application);
    clipfix::SkinTest skin;
    return QTest::qExec(&skin, argc, argv);
}

#include "skin_test.moc"
