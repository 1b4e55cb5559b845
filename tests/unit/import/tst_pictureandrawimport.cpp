#include "core/import/instrumentimporters.h"
#include "core/import/rawimport.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

class TestPictureAndRawImport : public QObject {
    Q_OBJECT

private slots:
    void pictureGreyLevelBecomesZTopRowOnTop()
    {
        QTemporaryDir dir;
        QImage picture(3, 2, QImage::Format_RGB32);
        picture.fill(Qt::black);
        picture.setPixel(0, 0, qRgb(200, 200, 200)); // top left
        picture.setPixel(2, 1, qRgb(255, 0, 0));
        const QString path = dir.filePath(QStringLiteral("p.png"));
        QVERIFY(picture.save(path));
        InstrumentFile file;
        QString message;
        QVERIFY2(InstrumentImporters::readFile(path, &file, &message), qPrintable(message));
        QCOMPARE(file.format, QStringLiteral("Picture"));
        const ImportedChannel& c = file.channels.first();
        QCOMPARE(c.z.at(0 * 2 + 1), 200.0);
        QCOMPARE(c.z.at(2 * 2 + 0), double(qGray(qRgb(255, 0, 0))));
        QCOMPARE(c.picture.pixel(2, 1), qRgb(255, 0, 0)); // the colours stay in the picture
        // A PNG whose bytes end early is refused.
        QFile whole(path);
        QVERIFY(whole.open(QIODevice::ReadOnly));
        QVERIFY(!InstrumentImporters::readData(whole.readAll().left(40), path, &file, &message));
    }

    // A plain TIFF is a picture; only Park's private tags make it an instrument file.
    void plainTiffIsAPicture()
    {
        QTemporaryDir dir;
        QImage picture(4, 3, QImage::Format_RGB32);
        picture.fill(qRgb(10, 20, 30));
        const QString path = dir.filePath(QStringLiteral("p.tif"));
        if (!picture.save(path))
            QSKIP("no TIFF writer");
        InstrumentFile file;
        QString message;
        QVERIFY2(InstrumentImporters::readFile(path, &file, &message), qPrintable(message));
        QCOMPARE(file.format, QStringLiteral("Picture"));
        QCOMPARE(file.channels.first().z.first(), double(qGray(qRgb(10, 20, 30))));
    }

    // A Flat file written here by its published layout: X mirrored (trace and retrace rows), up pass only.
    void omicronFlatSplitsTraceAndRetrace()
    {
        QByteArray flat("FLAT0100");
        QDataStream out(&flat, QIODevice::Append);
        out.setByteOrder(QDataStream::LittleEndian);
        out.setFloatingPointPrecision(QDataStream::DoublePrecision);
        const auto text = [&out](const QString& s) {
            out << quint32(s.size());
            for (QChar c : s)
                out << quint16(c.unicode());
        };
        out << quint32(2);
        for (const auto& [name, clocks, mirrored] :
            { std::make_tuple("Default::XYScanner::X", 6, 1), std::make_tuple("Default::XYScanner::Y", 2, 0) }) {
            text(QString::fromLatin1(name));
            text(QString());
            text(QStringLiteral("m"));
            out << quint32(clocks) << qint32(0) << qint32(1) << 1e-9 << 2e-9 << qint32(mirrored) << quint32(0);
        }
        text(QStringLiteral("Z"));
        text(QStringLiteral("TFF_Linear1D"));
        text(QStringLiteral("m"));
        out << quint32(2);
        text(QStringLiteral("Factor"));
        out << 2.0;
        text(QStringLiteral("Offset"));
        out << 0.0;
        out << quint32(1) << quint32(3) << quint64(1605085646);
        text(QStringLiteral("info"));
        out << quint32(12) << quint32(12);
        for (qint32 raw = 0; raw < 12; ++raw)
            out << raw;
        InstrumentFile file;
        QString message;
        QVERIFY2(
            InstrumentImporters::readData(flat, QStringLiteral("s--1_1.Z_flat"), &file, &message), qPrintable(message));
        QCOMPARE(file.format, QStringLiteral("Omicron Flat"));
        QCOMPARE(file.channels.size(), 2);
        const ImportedChannel& trace = file.channels.at(0);
        const ImportedChannel& retrace = file.channels.at(1);
        QCOMPARE(trace.width, 3);
        QCOMPARE(trace.height, 2);
        QCOMPARE(trace.sciValues.sizeX, 6e-9);
        QCOMPARE(trace.z, (QVector<double> { 0, 3, 0.5, 3.5, 1, 4 })); // first line at the bottom
        QCOMPARE(retrace.z, (QVector<double> { 2.5, 5.5, 2, 5, 1.5, 4.5 })); // retrace rows run right to left
        QVERIFY(
            !InstrumentImporters::readData(flat.left(flat.size() - 3), QStringLiteral("s.Z_flat"), &file, &message));
    }

    void rawChecksItsSizeAgainstTheFile()
    {
        const float values[] = { 1.5f, -2.0f, 3.25f, 4.0f };
        QByteArray data = QByteArray(8, 'h') + QByteArray(reinterpret_cast<const char*>(values), sizeof(values));
        RawImport::Options o;
        o.width = 2;
        o.height = 2;
        o.headerSize = 8;
        ImportedChannel c;
        QString message;
        QVERIFY(RawImport::readRaw(data, o, &c, &message));
        QCOMPARE(c.z, (QVector<double> { 3.25, 1.5, 4.0, -2.0 })); // column by column, rows from the bottom
        o.headerSize = 9;
        QVERIFY(!RawImport::readRaw(data, o, &c, &message));
        o.headerSize = 0;
        o.width = 1 << 20;
        o.height = 1 << 20;
        QVERIFY(!RawImport::readRaw(data, o, &c, &message));
        QVERIFY(!message.isEmpty());
    }

    void asciiTakesAnySeparator()
    {
        ImportedChannel c;
        QString message;
        QVERIFY(RawImport::readAscii("1,2,3\n\n4;5\t6\n", &c, &message));
        QCOMPARE(c.width, 3);
        QCOMPARE(c.height, 2);
        QCOMPARE(c.z.at(0 * 2 + 1), 1.0);
        QVERIFY(!RawImport::readAscii("1 2\n3\n", &c, &message));
    }
};

QTEST_GUILESS_MAIN(TestPictureAndRawImport)
#include "tst_pictureandrawimport.moc"
