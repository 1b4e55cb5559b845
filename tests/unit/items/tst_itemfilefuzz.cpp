#include "core/base/tokencodec.h"
#include "core/items/itemfile.h"
#include "itemtestsupport.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Framing {
    QList<QByteArray> blocks;
    QString header;
};

Framing split(const QByteArray& file)
{
    Framing framing;
    int pos = 0;
    while (pos < file.size()) {
        const int bar = file.indexOf('|', pos);
        const int length = file.mid(pos, bar - pos).toInt();
        framing.blocks.append(file.mid(bar + 1, length));
        pos = bar + 1 + length;
    }
    framing.header = QString::fromUtf8(qUncompress(framing.blocks.first()));
    return framing;
}

QByteArray join(const QList<QByteArray>& blocks, const QList<QByteArray>& lengths = {})
{
    QByteArray file;
    for (int i = 0; i < blocks.size(); ++i)
        file += (i < lengths.size() ? lengths.at(i) : QByteArray::number(blocks.at(i).size())) + '|' + blocks.at(i);
    return file;
}

QByteArray withHeader(const Framing& framing, const QString& header)
{
    QList<QByteArray> blocks = framing.blocks;
    blocks[0] = qCompress(header.toUtf8());
    return join(blocks);
}

/** The header text with its third and fourth token (W and H) replaced. */
QString forgeSize(const QString& header, const QString& width, const QString& height)
{
    TokenReader reader(header);
    QString out;
    TokenCodec::append(out, reader.next());
    TokenCodec::append(out, reader.next());
    reader.next();
    reader.next();
    TokenCodec::append(out, width);
    TokenCodec::append(out, height);
    return out + header.mid(reader.position());
}

} // namespace

/** Loads many damaged versions of one valid file: each load fails cleanly or yields a consistent item. */
class TestItemFileFuzz : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_path;
    std::unique_ptr<QSciImage> m_target;
    std::unique_ptr<QSciImage> m_snapshot;
    int m_loads = 0;
    int m_successes = 0;

    /** Loads @p bytes; false (with a note) when the outcome breaks a rule. */
    bool check(const QByteArray& bytes, const QString& what)
    {
        // A new file each time: rewriting one in place makes ext4 flush it to the disk on every close.
        QFile::remove(m_path);
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            return false;
        file.close();
        QElapsedTimer timer;
        timer.start();
        QString message;
        const bool ok = ItemFile::load(*m_target, m_path, true, true, false, &message);
        ++m_loads;
        if (timer.elapsed() > 2000) {
            qWarning("%s: load took %lld ms", qPrintable(what), timer.elapsed());
            return false;
        }
        if (!ok) {
            const QString difference = ItemTestSupport::difference(*m_target, *m_snapshot);
            if (message.isEmpty() || !difference.isEmpty() || m_target->fileName() != m_snapshot->fileName()) {
                qWarning("%s: failed load changed %s", qPrintable(what), qPrintable(difference));
                return false;
            }
            return true;
        }
        ++m_successes;
        const QSciImage& item = *m_target;
        const qsizetype points = qsizetype(item.width()) * item.height();
        bool consistent = item.width() > 0 && item.height() > 0 && item.picture().size() == item.size()
            && item.zMatrix().size() == points && item.maskMatrix().size() == points;
        for (qsizetype i = 0; consistent && i < points; ++i)
            consistent = item.maskData()[i] <= 1;
        if (!consistent)
            qWarning("%s: loaded an inconsistent item", qPrintable(what));
        m_target->copyFrom(*m_snapshot);
        return consistent;
    }

private slots:
    void initTestCase()
    {
        m_path = m_dir.filePath(QStringLiteral("fuzz.img.velm"));
        m_target = ItemTestSupport::sampleItem(6, 5, 2);
        m_target->setFileName(QStringLiteral("before"));
        m_snapshot.reset(m_target->duplicate());
    }

    void truncatedAndFlippedBytes()
    {
        const auto source = ItemTestSupport::sampleItem(5, 4, 1);
        QVERIFY(ItemFile::save(*source, m_path));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray valid = file.readAll();
        file.close();
        QVERIFY(check(valid, QStringLiteral("valid")));
        QCOMPARE(m_successes, 1);
        for (int cut = 0; cut < valid.size(); ++cut)
            QVERIFY(check(valid.left(cut), QStringLiteral("truncated at %1").arg(cut)));
        const char patterns[] = { char(0x01), char(0x80), char(0xFF) };
        for (int at = 0; at < valid.size(); ++at) {
            QByteArray bytes = valid;
            bytes[at] = char(bytes.at(at) ^ patterns[at % 3]);
            QVERIFY(check(bytes, QStringLiteral("byte %1").arg(at)));
        }
    }

    void damagedHeaderText()
    {
        const auto source = ItemTestSupport::sampleItem(5, 4, 1);
        QVERIFY(ItemFile::save(*source, m_path));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const Framing framing = split(file.readAll());
        file.close();
        const QString& header = framing.header;
        const QString replacements[] = { QStringLiteral("|"), QStringLiteral("9"), QStringLiteral("x") };
        for (int at = 0; at < header.size(); ++at) {
            QString damaged = header;
            damaged.replace(at, 1, replacements[at % 3]);
            QVERIFY(check(withHeader(framing, damaged), QStringLiteral("header char %1").arg(at)));
            if (at % 4 == 0)
                QVERIFY(check(withHeader(framing, header.left(at)), QStringLiteral("header cut at %1").arg(at)));
        }
    }

    void forgedSizesAndLengths()
    {
        const auto source = ItemTestSupport::sampleItem(5, 4, 1);
        QVERIFY(ItemFile::save(*source, m_path));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const Framing framing = split(file.readAll());
        file.close();
        const QStringList sizes = { QStringLiteral("0"), QStringLiteral("-1"), QStringLiteral("1"), QStringLiteral("4"),
            QStringLiteral("5"), QStringLiteral("20"), QStringLiteral("65536"), QStringLiteral("2147483647"),
            QStringLiteral("-2147483648"), QStringLiteral("99999999999"), QStringLiteral("x"), QString() };
        for (const QString& width : sizes) {
            for (const QString& height : sizes) {
                QVERIFY(check(withHeader(framing, forgeSize(framing.header, width, height)),
                    QStringLiteral("size %1 x %2").arg(width, height)));
            }
        }
        for (int b = 0; b < framing.blocks.size(); ++b) {
            const int length = framing.blocks.at(b).size();
            for (const QByteArray& forged :
                { QByteArray("0"), QByteArray("3"), QByteArray("4"), QByteArray::number(length - 1),
                    QByteArray::number(length + 1), QByteArray::number(length * 2), QByteArray("999999999999999999"),
                    QByteArray("99999999999999999999"), QByteArray(), QByteArray("1a") }) {
                QList<QByteArray> lengths;
                for (const QByteArray& block : framing.blocks)
                    lengths.append(QByteArray::number(block.size()));
                lengths[b] = forged;
                QVERIFY(check(join(framing.blocks, lengths),
                    QStringLiteral("block %1 length %2").arg(b).arg(QString::fromLatin1(forged))));
            }
            // A stated size far beyond the data, in a block that otherwise looks right.
            QList<QByteArray> blocks = framing.blocks;
            blocks[b][0] = char(0x7F);
            QVERIFY(check(join(blocks), QStringLiteral("block %1 states 2 GB").arg(b)));
        }
    }

    void largeFileCutInsideEveryBlock()
    {
        // Megabytes of blocks: reading past the end of a cut file leaves the mapped pages and is caught.
        const auto source = ItemTestSupport::sampleItem(600, 600, 3);
        QVERIFY(ItemFile::save(*source, m_path));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray valid = file.readAll();
        file.close();
        QVERIFY(valid.size() > 3000000);
        const Framing framing = split(valid);
        int start = 0;
        for (const QByteArray& block : framing.blocks) {
            const int data = valid.indexOf('|', start) + 1;
            // Cuts in the length digits, at the block's first bytes, through its middle and just short of its end.
            QList<int> cuts = { start + 1, data - 1, data, data + 1, data + 5, data + block.size() - 1 };
            for (int k = 1; k < 16; ++k)
                cuts.append(data + int(qint64(block.size()) * k / 16));
            for (int cut : qAsConst(cuts)) {
                if (cut > start && cut < data + block.size())
                    QVERIFY(check(valid.left(cut), QStringLiteral("cut at %1 of %2").arg(cut).arg(valid.size())));
            }
            start = data + block.size();
        }
        QVERIFY(check(valid, QStringLiteral("the whole large file")));
    }

    void cleanupTestCase() { qInfo("%d loads, %d of them succeeded", m_loads, m_successes); }
};

QTEST_GUILESS_MAIN(TestItemFileFuzz)
#include "tst_itemfilefuzz.moc"
