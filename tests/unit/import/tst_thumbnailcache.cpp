#include "core/import/filepreview.h"
#include "core/import/instrumentimporters.h"
#include "core/import/thumbnailcache.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/** A native item whose z rises to the right (or to the top) on a tilt that the preview levels away. */
void writeItem(
    const QString& path, int width, int height, bool risingRight, const QString& name = QStringLiteral("terrace"))
{
    QSciImage item(width, height, Qt::white);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            item.setZ(x, y, (risingRight ? (x % 8) : (y % 8)) + 100.0 * (x + y));
    QSciImage::SciValues sci;
    sci.sizeX = 2e-8;
    sci.sizeY = 1e-8;
    sci.xUnit = sci.yUnit = QStringLiteral("m");
    item.setSciValues(sci);
    item.setName(name);
    QVERIFY(ItemFile::save(item, path));
}

} // namespace

class TestThumbnailCache : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { InstrumentImporters::registerItemImporter(); }

    void previewShowsTheLevelledFirstChannelAndItsFacts()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("wide.img.velm"));
        writeItem(path, 400, 200, true);
        const FilePreview preview = FilePreview::make(path);
        QVERIFY2(preview.ok, qPrintable(preview.message));
        QCOMPARE(preview.thumbnail.size(), QSize(FilePreview::ThumbnailSize, FilePreview::ThumbnailSize / 2));
        QCOMPARE(preview.channels, QStringList { QStringLiteral("terrace") });
        QCOMPARE(QSize(preview.width, preview.height), QSize(400, 200));
        QCOMPARE(preview.sizeText(), QStringLiteral("400 x 200, 20 x 10 nm"));
        // The tilt of 100 per point dwarfs the pattern of 0..7 along x. Levelled, a column is one grey from
        // top to bottom, and the columns still differ; unlevelled, the corners would be black and white.
        const QImage& t = preview.thumbnail;
        int spread = 0;
        for (int x = 0; x < t.width(); ++x) {
            QVERIFY2(
                qAbs(qGray(t.pixel(x, 0)) - qGray(t.pixel(x, t.height() - 1))) <= 8, qPrintable(QString::number(x)));
            spread = qMax(spread, qAbs(qGray(t.pixel(x, 5)) - qGray(t.pixel(0, 5))));
        }
        QVERIFY(spread > 60);

        const QString broken = dir.filePath(QStringLiteral("broken.img.velm"));
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("12|not a block");
        file.close();
        const FilePreview bad = FilePreview::make(broken);
        QVERIFY(!bad.ok);
        QVERIFY(bad.message.contains(broken));
        QVERIFY(FilePreview::isBrowsable(QStringLiteral("x.IMG.VELM")));
        QVERIFY(FilePreview::isBrowsable(QStringLiteral("scan.sxm")));
        QVERIFY(!FilePreview::isBrowsable(QStringLiteral("notes.docx")));
    }

    void cacheIsReusedAndRefreshedWhenTheFileChanges()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("scan.img.velm"));
        // White space a PNG text chunk would not keep as it is.
        writeItem(path, 64, 64, true, QStringLiteral("  two  blanks\n"));
        const ThumbnailCache cache(dir.filePath(QStringLiteral("cache")));
        const FilePreview first = cache.preview(path);
        QVERIFY(first.ok && !first.fromCache);
        QVERIFY(QFileInfo::exists(cache.entryFile(path)));
        const FilePreview second = cache.preview(path);
        QVERIFY(second.fromCache);
        QCOMPARE(second.thumbnail, first.thumbnail);
        QCOMPARE(second.channels, first.channels);
        QCOMPARE(second.sizeText(), first.sizeText());

        // New content, and a modification time that surely differs: the entry no longer matches.
        writeItem(path, 64, 64, false);
        QFile touched(path);
        QVERIFY(touched.open(QIODevice::ReadWrite));
        QVERIFY(touched.setFileTime(QDateTime::currentDateTime().addSecs(5), QFileDevice::FileModificationTime));
        touched.close();
        const FilePreview third = cache.preview(path);
        QVERIFY(!third.fromCache);
        QVERIFY(third.thumbnail != first.thumbnail);
        QVERIFY(cache.preview(path).fromCache);

        // A garbled entry is not trusted: the file is read again.
        QFile entry(cache.entryFile(path));
        QVERIFY(entry.open(QIODevice::WriteOnly | QIODevice::Truncate));
        entry.write("garbage");
        entry.close();
        QVERIFY(!cache.preview(path).fromCache);
    }
};

QTEST_GUILESS_MAIN(TestThumbnailCache)
#include "tst_thumbnailcache.moc"
