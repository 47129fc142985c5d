#pragma once

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QtGlobal>

namespace clipfix::test {

// Small films as a person would bring them, made once for a test program.
class JobMedia {
  public:
    JobMedia() {
        MakeHealthy();
        const QByteArray whole = Read(Healthy());
        Write(Cut(), whole.left(whole.lastIndexOf("moov") - 4));
        // A whole film under a name that does not say so: it can be its own reference.
        Write(OwnReference(), whole);
        Write(Noise(), QByteArray(200000, 'x'));
        Write(Avi(), Read(QStringLiteral(CLIPFIX_EXAMPLES_FOLDER "/damaged.avi")));
    }

    [[nodiscard]] QString Healthy() const { return At("healthy.mp4"); }
    // Without its movie atom, so that a reference is needed.
    [[nodiscard]] QString Cut() const { return At("cut.mp4"); }
    [[nodiscard]] QString OwnReference() const { return At("own.MP4"); }
    [[nodiscard]] QString Noise() const { return At("noise.mp4"); }
    [[nodiscard]] QString Avi() const { return At("damaged.avi"); }
    [[nodiscard]] QString At(const char* name) const {
        return folder_.filePath(QString::fromLatin1(name));
    }
    [[nodiscard]] QString Folder() const { return folder_.path(); }

  private:
    void MakeHealthy() const {
        const int code = QProcess::execute(
            QStringLiteral("ffmpeg"),
            QStringLiteral("-v error -y -f lavfi -i testsrc2=s=320x240:r=25:d=4 -f lavfi "
                           "-i sine=f=440:d=4 -c:v libx264 -bf 0 -c:a aac -ac 2 "
                           "-chunk_duration 500000")
                    .split(QLatin1Char(' ')) +
                QStringList(Healthy()));
        if (code != 0) {
            qFatal("ffmpeg cannot make the film");
        }
    }
    static QByteArray Read(const QString& name) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly)) {
            qFatal("cannot read %s", qPrintable(name));
        }
        return file.readAll();
    }
    static void Write(const QString& name, const QByteArray& bytes) {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot write %s", qPrintable(name));
        }
    }

    QTemporaryDir folder_;
};

}  // namespace clipfix::test
