#include "movieframes.h"

#include "core/items/qsciimage.h"
#include "core/settings/options.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPainter>

QImage MovieFrames::render(const QSciImage& item, Source source)
{
    return source == Source::Picture ? item.picture() : item.zPicture();
}

QSize MovieFrames::movieSize(const QSize& requested)
{
    return QSize(requested.width() + (requested.width() & 1), requested.height() + (requested.height() & 1));
}

QImage MovieFrames::fit(const QImage& frame, const QSize& requested, OddSize mode)
{
    const QSize target = movieSize(requested);
    const QSize inner = mode == OddSize::Pad ? requested : target;
    QImage scaled
        = frame.size() == inner ? frame : frame.scaled(inner, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled = scaled.convertToFormat(QImage::Format_RGB32);
    if (scaled.size() == target)
        return scaled;
    QImage padded(target, QImage::Format_RGB32);
    padded.fill(Qt::black);
    QPainter painter(&padded);
    painter.drawImage(0, 0, scaled);
    return padded;
}

QString MovieFrames::oddSizeText(const QSize& requested, OddSize mode)
{
    const QSize target = movieSize(requested);
    if (target == requested)
        return QString();
    const QString size = QStringLiteral("%1 x %2").arg(target.width()).arg(target.height());
    return mode == OddSize::Pad
        ? QCoreApplication::translate("MovieFrames",
            "The movie needs even sides: the frames get a black border on the right or bottom, %1 in all.")
              .arg(size)
        : QCoreApplication::translate("MovieFrames", "The movie needs even sides: the frames are scaled to %1.")
              .arg(size);
}

void MovieFrames::toItem(
    const QImage& frame, const QSize& scaleTo, const QString& moviePath, int number, double seconds, QSciImage& item)
{
    QImage picture = scaleTo.isValid() && scaleTo != frame.size()
        ? frame.scaled(scaleTo, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        : frame;
    picture = picture.convertToFormat(QImage::Format_ARGB32);
    const int width = picture.width(), height = picture.height();
    // Grey levels, written column by column with rows from the bottom as the z-matrix holds them.
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    QVector<double> z(qsizetype(width) * height);
    for (int row = 0; row < height; ++row) {
        const uchar* line = grey.constScanLine(row);
        double* column = z.data() + (height - 1 - row);
        for (int x = 0; x < width; ++x)
            column[qsizetype(x) * height] = line[x];
    }
    QSciImage fresh(width, height, Qt::white);
    fresh.setLoading(true);
    (void)fresh.setContent(picture, z, QVector<uchar>(z.size(), 0));
    const QString file = QFileInfo(moviePath).fileName();
    fresh.setName(QFileInfo(moviePath).completeBaseName() + QLatin1Char(' ') + QString::number(number));
    fresh.setInstrumentHeader({ { QStringLiteral("Format"), QStringLiteral("Movie") },
        { QStringLiteral("Source file"), file }, { QStringLiteral("Frame"), QString::number(number) },
        { QStringLiteral("Time [s]"), QString::number(seconds, 'f', 3) } });
    ColorGradient gradient;
    gradient.fromString(Options::getString(QStringLiteral("FormChooseColorGradient.gradient"), QString()));
    fresh.setColorGradient(gradient);
    fresh.setFileName(moviePath);
    fresh.setCreationTime(QDateTime::currentDateTime());
    item.copyFrom(fresh);
    item.setLoading(false);
}
