#include "core/base/compressedblock.h"

#include <QMutex>
#include <QRandomGenerator>
#include <QtTest>
#include <cstring>

namespace {

QByteArray payload(qsizetype size, bool compressible, quint32 seed = 7)
{
    QByteArray data(int(size), Qt::Uninitialized);
    QRandomGenerator random(seed);
    for (qsizetype i = 0; i < size; ++i)
        data[int(i)] = compressible ? char((i / 7) % 13) : char(random.generate());
    return data;
}

QByteArray inflate(const QByteArray& block)
{
    const qint64 stated = CompressedBlock::statedSize(block.constData(), block.size());
    QByteArray out(int(qMax<qint64>(stated, 0)), Qt::Uninitialized);
    if (stated < 0 || !CompressedBlock::uncompress(block.constData(), block.size(), out.data(), out.size()))
        return QByteArray("failed");
    return out;
}

} // namespace

class TestCompressedBlock : public QObject {
    Q_OBJECT

private slots:
    void roundTripsAndStaysOneZlibStream_data()
    {
        QTest::addColumn<qsizetype>("size");
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("compressible");
        const qsizetype piece = CompressedBlock::PieceSize;
        QTest::newRow("empty") << qsizetype(0) << 6 << true;
        QTest::newRow("one byte") << qsizetype(1) << 6 << false;
        QTest::newRow("just below a piece") << piece - 1 << 3 << false;
        QTest::newRow("one piece") << piece << 6 << true;
        QTest::newRow("one piece and a byte") << piece + 1 << 2 << false;
        QTest::newRow("several pieces, level 6") << piece * 3 + piece / 2 << 6 << true;
        QTest::newRow("several pieces, random data") << piece * 3 + 5 << 3 << false;
    }

    void roundTripsAndStaysOneZlibStream()
    {
        QFETCH(qsizetype, size);
        QFETCH(int, level);
        QFETCH(bool, compressible);
        const QByteArray data = payload(size, compressible);
        const CompressedBlock block = CompressedBlock::compress(data, level);
        const QByteArray bytes = block.toByteArray();
        QCOMPARE(qsizetype(bytes.size()), block.size());
        QCOMPARE(CompressedBlock::statedSize(bytes.constData(), bytes.size()), qint64(size));
        // Any zlib reader must read it, not only ours.
        QCOMPARE(qUncompress(bytes), data);
        QCOMPARE(inflate(bytes), data);
    }

    void readsPlainQCompressStreams()
    {
        const QByteArray data = payload(CompressedBlock::PieceSize * 2 + 17, true);
        QCOMPARE(inflate(qCompress(data, 6)), data);
    }

    void piecesOfEveryKindJoinIntoOneStream()
    {
        // Each piece is a finished stream of its own until it is joined: its final block loses that flag and
        // it is padded to a byte, wherever in a byte its last block ends. Pieces of differing content end at
        // differing bits, and take stored, fixed and dynamic blocks.
        constexpr int Pieces = 12;
        const qsizetype piece = CompressedBlock::PieceSize;
        QByteArray data(int(piece * Pieces), Qt::Uninitialized);
        QRandomGenerator random(11);
        for (int p = 0; p < Pieces; ++p) {
            const quint32 bits = (1u << (p % 8 + 1)) - 1;
            for (qsizetype i = p * piece; i < (p + 1) * piece; ++i)
                data[int(i)] = p == 3 ? char(i / 4000) : char(random.generate() & bits);
        }
        for (int level : { 3, 6 }) {
            const QByteArray bytes = CompressedBlock::compress(data, level).toByteArray();
            QCOMPARE(qUncompress(bytes), data);
            QCOMPARE(inflate(bytes), data);
            // The faster compressor must compress about as well as zlib at the same level.
            QVERIFY(bytes.size() <= qCompress(data, level).size() * 102 / 100);
        }
    }

    void coincidentalFlushPatternsFallBackToOneStream()
    {
        // Stored blocks carry the data as it is, so it can hold the bytes a flush ends with anywhere.
        QByteArray data = payload(CompressedBlock::PieceSize * 2 + 100, false, 3);
        for (int i = 0; i + 4 <= data.size(); i += 13)
            std::memcpy(data.data() + i, "\0\0\xff\xff", 4);
        for (int level : { 0, 6 }) {
            const QByteArray bytes = CompressedBlock::compress(data, level).toByteArray();
            QCOMPARE(inflate(bytes), data);
            QCOMPARE(inflate(qCompress(data, level)), data);
        }
    }

    void brokenStreamsFail_data()
    {
        QTest::addColumn<QByteArray>("block");
        QTest::addColumn<qsizetype>("destinationSize");
        const QByteArray good
            = CompressedBlock::compress(payload(CompressedBlock::PieceSize * 2 + 3, true), 6).toByteArray();
        const qsizetype size = CompressedBlock::PieceSize * 2 + 3;
        QByteArray flipped = good;
        flipped[good.size() / 2] = char(flipped.at(good.size() / 2) ^ 0x5A);
        QByteArray badAdler = good;
        badAdler[good.size() - 1] = char(badAdler.at(good.size() - 1) ^ 1);
        QByteArray badHeader = good;
        badHeader[4] = 0x79;
        QTest::newRow("flipped byte") << flipped << size;
        QTest::newRow("wrong Adler-32") << badAdler << size;
        QTest::newRow("truncated") << good.left(good.size() - 9) << size;
        QTest::newRow("not zlib") << badHeader << size;
        QTest::newRow("destination too small") << good << size - 1;
        QTest::newRow("destination too large") << good << size + 1;
        QTest::newRow("prefix only") << good.left(3) << qsizetype(0);
    }

    void brokenStreamsFail()
    {
        QFETCH(QByteArray, block);
        QFETCH(qsizetype, destinationSize);
        QByteArray out(int(destinationSize), Qt::Uninitialized);
        QVERIFY(!CompressedBlock::uncompress(block.constData(), block.size(), out.data(), destinationSize));
    }

    void refusesStatedSizesTheDataCannotHold()
    {
        QByteArray forged = qCompress(QByteArray("abc"));
        forged[0] = char(0x7F); // states about 2 GB for a dozen bytes
        QByteArray out;
        QString message;
        QVERIFY(!CompressedBlock::uncompress(forged, &out, qint64(1) << 40, &message));
        QVERIFY(message.contains(QLatin1String("more than")));
        QVERIFY(out.isEmpty());
        QVERIFY(!CompressedBlock::uncompress(qCompress(payload(5000, true)), &out, 4999, &message));
        QVERIFY(CompressedBlock::uncompress(qCompress(payload(5000, true)), &out, 5000, &message));
        QCOMPARE(out, payload(5000, true));
    }

    void blocksInflateTogetherAndTellTheirSinks()
    {
        const QByteArray a = payload(CompressedBlock::PieceSize * 3, true, 1);
        const QByteArray b = payload(1000, false, 2);
        const QByteArray blockA = CompressedBlock::compress(a, 6).toByteArray();
        const QByteArray blockB = qCompress(b);
        QByteArray outA, outB(b.size(), Qt::Uninitialized), outC = outB, seen(a.size(), Qt::Uninitialized);
        QMutex mutex;
        int allocations = 0;
        QVector<CompressedBlock::Inflation> jobs(4);
        // Into a buffer the job allocates itself.
        jobs[0].data = blockA.constData();
        jobs[0].size = blockA.size();
        jobs[0].destinationSize = a.size();
        jobs[0].allocate = [&]() {
            QMutexLocker lock(&mutex);
            ++allocations;
            outA.resize(a.size());
            return outA.data();
        };
        // Only through the sink.
        jobs[1] = jobs[0];
        jobs[1].allocate = {};
        jobs[1].sink = [&](qsizetype offset, char* data, qsizetype length) {
            std::memcpy(seen.data() + offset, data, size_t(length));
        };
        jobs[2].data = blockB.constData();
        jobs[2].size = blockB.size();
        jobs[2].destination = outB.data();
        jobs[2].destinationSize = outB.size();
        jobs[3] = jobs[2];
        jobs[3].size -= 1;
        jobs[3].destination = outC.data();
        CompressedBlock::uncompressAll(jobs);
        QVERIFY(jobs.at(0).ok && jobs.at(1).ok && jobs.at(2).ok);
        QVERIFY(!jobs.at(3).ok);
        QCOMPARE(allocations, 1);
        QCOMPARE(outA, a);
        QCOMPARE(seen, a);
        QCOMPARE(outB, b);
    }
};

QTEST_GUILESS_MAIN(TestCompressedBlock)
#include "tst_compressedblock.moc"
