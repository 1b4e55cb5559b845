#include "core/base/tokencodec.h"
#include "core/items/itemfile.h"
#include "core/items/itemimporterregistry.h"
#include "itemtestsupport.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>
#include <cstring>

using ItemTestSupport::difference;
using ItemTestSupport::sampleItem;

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/** The compressed blocks of a file, framing removed. */
QList<QByteArray> blocksOf(const QByteArray& file)
{
    QList<QByteArray> blocks;
    int pos = 0;
    while (pos < file.size()) {
        const int bar = file.indexOf('|', pos);
        const int length = file.mid(pos, bar - pos).toInt();
        blocks.append(file.mid(bar + 1, length));
        pos = bar + 1 + length;
    }
    return blocks;
}

QByteArray framed(const QList<QByteArray>& blocks)
{
    QByteArray file;
    for (const QByteArray& block : blocks)
        file += QByteArray::number(block.size()) + '|' + block;
    return file;
}

QByteArray headerBlock(const QString& text)
{
    return qCompress(text.toUtf8());
}

} // namespace

class TestItemFile : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void roundTripsEveryPartBitForBit_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("quick");
        QTest::newRow("odd size, level 6") << QSize(37, 23) << false;
        QTest::newRow("odd size, quick") << QSize(37, 23) << true;
        QTest::newRow("several pieces, level 6") << QSize(700, 400) << false;
        QTest::newRow("several pieces, quick") << QSize(700, 400) << true;
        QTest::newRow("1 x 1") << QSize(1, 1) << false;
    }

    void roundTripsEveryPartBitForBit()
    {
        QFETCH(QSize, size);
        QFETCH(bool, quick);
        const auto item = sampleItem(size.width(), size.height());
        const QString file = path(QStringLiteral("round.img.velm"));
        QString message;
        QVERIFY2(ItemFile::save(*item, file, ItemFile::PartFlags(), quick, true, &message), qPrintable(message));
        QVERIFY(item->isSaved());

        QSciImage loaded;
        QVERIFY2(ItemFile::load(loaded, file, true, true, false, &message), qPrintable(message));
        QCOMPARE(difference(*item, loaded), QString());
        QCOMPARE(loaded.fileName(), file);
        QVERIFY(loaded.isSaved());

        ItemFile::Info info;
        QVERIFY(ItemFile::readInfo(file, &info, &message));
        QCOMPARE(info.flags.toString(), QStringLiteral("11111"));
        QCOMPARE(info.objectCount, 2);
        const qint64 points = qint64(size.width()) * size.height();
        QCOMPARE(info.statedSizes[1], points);
        QCOMPARE(info.statedSizes[2], points * 4);
        QCOMPARE(info.statedSizes[3], points * 8);
        // zlib's level field: 2 for level 6, 1 for levels 2 and 3.
        for (const QByteArray& block : blocksOf(readAll(file)))
            QCOMPARE(uchar(block.at(5)), uchar(quick ? 0x5E : 0x9C));
    }

    void opacityKeepsSixDigits()
    {
        auto item = sampleItem(2, 2);
        item->setOpacity(0.123456789);
        const QString file = path(QStringLiteral("opacity.img.velm"));
        QVERIFY(ItemFile::save(*item, file));
        QSciImage loaded;
        QVERIFY(ItemFile::load(loaded, file));
        QCOMPARE(loaded.opacity(), 0.123457);
    }

    void storesColumnOrder()
    {
        QSciImage item(3, 2, QColor(Qt::white));
        QByteArray pictureBytes, maskBytes, zBytes;
        for (int x = 0; x < 3; ++x) {
            for (int y = 0; y < 2; ++y) {
                item.setPixel(x, y, qRgba(10 * x + y, 100 + x, 200 + y, 50 + x));
                item.setZ(x, y, x + y / 4.0);
                item.setPixelSelected(x, y, x == y);
                const char rgba[4] = { char(10 * x + y), char(100 + x), char(200 + y), char(50 + x) };
                pictureBytes += QByteArray(rgba, 4);
                maskBytes += char(x == y ? 1 : 0);
                char le[8];
                qToLittleEndian(x + y / 4.0, le);
                zBytes += QByteArray(le, 8);
            }
        }
        const QString file = path(QStringLiteral("order.img.velm"));
        QVERIFY(ItemFile::save(item, file));
        const QList<QByteArray> blocks = blocksOf(readAll(file));
        QCOMPARE(blocks.size(), 4);
        QVERIFY(QString::fromUtf8(qUncompress(blocks.at(0))).startsWith(QLatin1String("1|15|111111|31|2")));
        QCOMPARE(qUncompress(blocks.at(1)), maskBytes);
        QCOMPARE(qUncompress(blocks.at(2)), pictureBytes);
        QCOMPARE(qUncompress(blocks.at(3)), zBytes);
    }

    void headerOnlyLeavesMatricesAlone()
    {
        const auto source = sampleItem(5, 4, 1);
        const QString file = path(QStringLiteral("header.img.velm"));
        QVERIFY(ItemFile::save(*source, file, ItemFile::PartFlags(true, false, false, false, false)));
        ItemFile::Info info;
        QVERIFY(ItemFile::readInfo(file, &info));
        QCOMPARE(info.blockSizes[1] + info.blockSizes[2] + info.blockSizes[3], qint64(-3));
        QCOMPARE(qint64(readAll(file).size()), QByteArray::number(info.blockSizes[0]).size() + 1 + info.blockSizes[0]);

        auto target = sampleItem(5, 4, 2);
        const std::unique_ptr<QSciImage> before(target->duplicate());
        target->setName(QStringLiteral("other"));
        QVERIFY(ItemFile::load(*target, file));
        QCOMPARE(target->name(), source->name());
        QCOMPARE(target->instrumentHeader(), source->instrumentHeader());
        QCOMPARE(target->picture(), before->picture());
        QCOMPARE(target->zMatrix().size(), before->zMatrix().size());
        QVERIFY(std::memcmp(target->zData(), before->zData(), 20 * sizeof(double)) == 0);
        QVERIFY(std::memcmp(target->maskData(), before->maskData(), 20) == 0);
        QCOMPARE(target->objects(), before->objects());
    }

    void namesAndFailures()
    {
        const auto item = sampleItem(3, 3);
        const QString capital = path(QStringLiteral("CAPS.IMG.VELM"));
        QVERIFY(ItemFile::save(*item, capital));
        QSciImage loaded;
        QVERIFY(ItemFile::load(loaded, capital));
        QCOMPARE(difference(*item, loaded), QString());

        QString message;
        const QString missing = path(QStringLiteral("missing.img.velm"));
        QVERIFY(!ItemFile::load(loaded, missing, true, true, false, &message));
        QCOMPARE(message, QStringLiteral("File does not exist: ") + missing);
        const QString other = path(QStringLiteral("picture.xyz"));
        writeAll(other, "not an image");
        QVERIFY(!ItemFile::load(loaded, other, true, true, false, &message));
        QCOMPARE(message, QStringLiteral("Unable to read from file: ") + other);
        const QString folder = path(QStringLiteral("folder.img.velm"));
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(!ItemFile::load(loaded, folder, true, true, false, &message));
        QCOMPARE(message, QStringLiteral("Unable to read from file: ") + folder + QStringLiteral("\nis a directory"));
        QVERIFY(!ItemFile::save(loaded, folder, ItemFile::PartFlags(), false, false, &message));
        QCOMPARE(difference(*item, loaded), QString());
    }

    void otherFormatsGoToTheImporters()
    {
        ItemImporterRegistry::add(
            { QStringLiteral("test"), { QStringLiteral("xyz") }, [](QSciImage& item, const QString& path, QString*) {
                 return readAll(path) == "3x2"
                     && item.setContent(
                         QImage(3, 2, QImage::Format_ARGB32), QVector<double>(6, 1.0), QVector<uchar>(6, 0));
             } });
        const QString file = path(QStringLiteral("scan.001.XYZ"));
        writeAll(file, "3x2");
        QVERIFY(ItemImporterRegistry::canRead(file));
        QSciImage item;
        QVERIFY(ItemFile::load(item, file));
        QCOMPARE(item.size(), QSize(3, 2));
        QCOMPARE(item.name(), QStringLiteral("scan.001"));
        QCOMPARE(item.fileName(), file);
        writeAll(file, "4x4");
        QString message;
        QVERIFY(!ItemFile::load(item, file, true, true, false, &message));
        QCOMPARE(message, QStringLiteral("Unable to read from file: ") + file);
        ItemImporterRegistry::remove(QStringLiteral("test"));
        QVERIFY(!ItemImporterRegistry::canRead(file));
    }

    void readsFilesOfPlainQCompressBlocks()
    {
        const auto item = sampleItem(700, 400);
        const QString ours = path(QStringLiteral("pieces.img.velm"));
        QVERIFY(ItemFile::save(*item, ours));
        QList<QByteArray> blocks = blocksOf(readAll(ours));
        for (QByteArray& block : blocks)
            block = qCompress(qUncompress(block), 6);
        const QString plain = path(QStringLiteral("plain.img.velm"));
        writeAll(plain, framed(blocks));
        const QString quick = path(QStringLiteral("quick.img.velm"));
        QString message;
        QVERIFY(ItemFile::write(*item, quick, ItemFile::PartFlags(), true, &message));
        for (const QString& file : { ours, plain, quick }) {
            QSciImage loaded;
            QVERIFY(ItemFile::load(loaded, file));
            QCOMPARE(difference(*item, loaded), QString());
        }
    }

    void wrongSizedBlocksAreSkipped()
    {
        const auto source = sampleItem(4, 3, 1);
        const QString file = path(QStringLiteral("sizes.img.velm"));
        QVERIFY(ItemFile::save(*source, file));
        QList<QByteArray> blocks = blocksOf(readAll(file));
        blocks[1] = qCompress(QByteArray(11, 1));
        blocks[2] = qCompress(QByteArray(4 * 12 + 4, 9));
        blocks[3] = qCompress(QByteArray(8 * 11, 0));
        writeAll(file, framed(blocks));
        auto target = sampleItem(4, 3, 2);
        const std::unique_ptr<QSciImage> before(target->duplicate());
        QVERIFY(ItemFile::load(*target, file));
        QCOMPARE(target->maskSelectedCount(), qsizetype(0));
        QCOMPARE(target->picture(), before->picture());
        QVERIFY(std::memcmp(target->zData(), before->zData(), 12 * sizeof(double)) == 0);
        QCOMPARE(target->name(), source->name());
    }

    void brokenBlocksAndForgedSizesKeepTheItem_data()
    {
        QTest::addColumn<QString>("mutation");
        QTest::newRow("broken z stream") << QStringLiteral("z");
        QTest::newRow("huge size, no blocks") << QStringLiteral("huge");
        QTest::newRow("bad object record") << QStringLiteral("object");
        QTest::newRow("block longer than the file") << QStringLiteral("length");
        QTest::newRow("stream longer than its stated size") << QStringLiteral("stated");
    }

    void brokenBlocksAndForgedSizesKeepTheItem()
    {
        QFETCH(QString, mutation);
        const auto source = sampleItem(4, 3, 1);
        const QString file = path(QStringLiteral("broken.img.velm"));
        QVERIFY(ItemFile::save(*source, file));
        QList<QByteArray> blocks = blocksOf(readAll(file));
        QByteArray bytes;
        if (mutation == QLatin1String("z")) {
            blocks[3][blocks[3].size() / 2] = char(blocks[3].at(blocks[3].size() / 2) ^ 0x21);
            bytes = framed(blocks);
        } else if (mutation == QLatin1String("stated")) {
            // The prefix states the item's 12 doubles; the stream holds one more.
            blocks[3] = qCompress(QByteArray(8 * 13, 1));
            blocks[3][3] = char(8 * 12);
            bytes = framed(blocks);
        } else if (mutation == QLatin1String("huge")) {
            bytes = framed({ headerBlock(QStringLiteral("1|15|000005|200005|10000")) });
        } else if (mutation == QLatin1String("object")) {
            bytes = framed({ headerBlock(QStringLiteral("1|15|000011|31|31|11|x")) });
        } else {
            bytes = readAll(file);
            bytes.chop(1);
        }
        writeAll(file, bytes);
        auto target = sampleItem(6, 5, 2);
        const std::unique_ptr<QSciImage> before(target->duplicate());
        QSignalSpy spy(target.get(), &QSciImage::contentChanged);
        QString message;
        QVERIFY(!ItemFile::load(*target, file, true, true, false, &message));
        QVERIFY(!message.isEmpty());
        QCOMPARE(difference(*target, *before), QString());
        QCOMPARE(target->fileName(), before->fileName());
        QCOMPARE(spy.count(), 0);
    }

    void smallSizesMayComeWithoutBlocksAndTheFirstKeyWins()
    {
        const QString file = path(QStringLiteral("small.img.velm"));
        QString properties;
        for (const char* token : { "name", "first", "name", "second", "opacity", "x" })
            TokenCodec::append(properties, QString::fromLatin1(token));
        QString header = QStringLiteral("1|15|100001|31|2");
        TokenCodec::append(header, properties);
        header += QStringLiteral("1|01|0");
        writeAll(file, framed({ headerBlock(header) }));
        auto target = sampleItem(5, 4);
        QSignalSpy spy(target.get(), &QSciImage::contentChanged);
        QVERIFY(ItemFile::load(*target, file, false, true, false, nullptr));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(target->size(), QSize(3, 2));
        QCOMPARE(target->name(), QStringLiteral("first"));
        QCOMPARE(target->opacity(), 1.0);
        QCOMPARE(target->sciValues().sizeX, 3.0);
        QCOMPARE(target->pixel(2, 1), qRgb(255, 255, 255));
        QCOMPARE(target->maskSelectedCount(), qsizetype(0));
        QVERIFY(target->instrumentHeader().isEmpty());
        QVERIFY(target->fileName().isEmpty());
    }

    void resetStartsFromANewItem()
    {
        const auto source = sampleItem(4, 3);
        const QString file = path(QStringLiteral("reset.img.velm"));
        QVERIFY(ItemFile::save(*source, file, ItemFile::PartFlags(false, true, true, true, false)));
        auto target = sampleItem(4, 3, 5);
        QVERIFY(ItemFile::load(*target, file, false, false, true, nullptr));
        QCOMPARE(target->name(), QString());
        QVERIFY(target->objects().isEmpty());
        QCOMPARE(target->picture(), source->picture());
    }

    void reloadsReuseOnlyMatricesNothingElseHolds()
    {
        // Reloading recycles the z-matrix the item let go; one still held elsewhere (an undo step, a view)
        // must keep its values.
        const auto first = sampleItem(40, 30, 1);
        const auto second = sampleItem(40, 30, 2);
        const QString one = path(QStringLiteral("one.img.velm"));
        const QString two = path(QStringLiteral("two.img.velm"));
        QVERIFY(ItemFile::save(*first, one, ItemFile::PartFlags(true, true, true, true, false)));
        QVERIFY(ItemFile::save(*second, two, ItemFile::PartFlags(true, true, true, true, false)));
        // Bit for bit: the sample holds a NaN.
        auto same = [](const QVector<double>& a, const QVector<double>& b) {
            return a.size() == b.size() && std::memcmp(a.constData(), b.constData(), size_t(a.size()) * 8) == 0;
        };
        QSciImage target;
        const QSciImage& view = target;
        QVERIFY(ItemFile::load(target, one, false, false, nullptr));
        const QVector<double> held = target.zMatrix();
        QVERIFY(ItemFile::load(target, two, false, false, nullptr));
        QVERIFY(ItemFile::load(target, one, false, false, nullptr));
        QVERIFY(same(target.zMatrix(), first->zMatrix()));
        QVERIFY(same(held, first->zMatrix()));
        QVERIFY(view.zData() != held.constData());

        const double* unshared = view.zData();
        QVERIFY(ItemFile::load(target, two, false, false, nullptr));
        QVERIFY(ItemFile::load(target, one, false, false, nullptr));
        QCOMPARE(view.zData(), unshared);
        QVERIFY(same(target.zMatrix(), first->zMatrix()));
        QVERIFY(ItemFile::load(target, two, false, false, nullptr));
        QVERIFY(same(target.zMatrix(), second->zMatrix()));
    }
};

QTEST_GUILESS_MAIN(TestItemFile)
#include "tst_itemfile.moc"
