#include "samplefiles.h"
#include "core/import/instrumentimporters.h"
#include "core/import/pictureimporter.h"
#include "core/items/qsciimage.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>

namespace {

QByteArray bytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString headerValue(const ImportedChannel& channel, const QString& key)
{
    for (const auto& entry : channel.header) {
        if (entry.first == key)
            return entry.second;
    }
    return QString();
}

double z(const ImportedChannel& c, int x, int y)
{
    return c.z.at(qsizetype(x) * c.height + y);
}

/** Pearson correlation of two equally sized matrices: positive when both are the same way round. */
double correlation(const ImportedChannel& a, const ImportedChannel& b)
{
    double ma = 0, mb = 0;
    for (qsizetype i = 0; i < a.z.size(); ++i) {
        ma += a.z[i];
        mb += b.z[i];
    }
    ma /= double(a.z.size());
    mb /= double(b.z.size());
    double sab = 0, saa = 0, sbb = 0;
    for (qsizetype i = 0; i < a.z.size(); ++i) {
        sab += (a.z[i] - ma) * (b.z[i] - mb);
        saa += (a.z[i] - ma) * (a.z[i] - ma);
        sbb += (b.z[i] - mb) * (b.z[i] - mb);
    }
    return sab / std::sqrt(saa * sbb);
}

} // namespace

class TestInstrumentImporters : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!QDir(QStringLiteral(VELMORA_SAMPLES_DIR)).exists())
            QSKIP("sample instrument files not available");
    }

    void readsEverySample_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("format");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<double>("sizeX");
        QTest::addColumn<QString>("zUnit");
        QTest::addColumn<double>("zRange"); ///< of channel 0
        // Ranges and sizes as decoded independently from the raw bytes.
        QTest::newRow("createc") << "createc_dat/A250407.141806.dat"
                                 << "Createc DAT" << 4 << 256 << 256 << 9.984e-8 << "m" << 6.58e-9;
        QTest::newRow("createc preview") << "createc_dat/createc_scan_preview_120nm.dat"
                                         << "Createc DAT" << 40 << 64 << 64 << 1.2e-7 << "m" << 4.25e-9;
        QTest::newRow("createc qplus") << "createc_dat/createc_scan_qplus_10ch_afm.dat"
                                       << "Createc DAT" << 10 << 256 << 256 << 1.5e-8 << "m" << 0.629e-9;
        QTest::newRow("nanonis") << "nanonis_sxm/sxm_moire_10nm.sxm"
                                 << "Nanonis SXM" << 4 << 160 << 160 << 1e-8 << "m" << 0.369e-9;
        QTest::newRow("rhk topo") << "rhk_sm4/topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.sm4"
                                  << "RHK SM4" << 6 << 128 << 128 << 7.5e-8 << "A" << 17.15e-12;
        QTest::newRow("rhk hopg") << "rhk_sm4/hopg_300k_2020_08_11_16_04_06_999.sm4"
                                  << "RHK SM4" << 6 << 256 << 256 << 1e-7 << "A" << 47.17e-12;
        QTest::newRow("aarhus single") << "*/test_single_image.mul"
                                       << "Aarhus MUL/FLM" << 1 << 512 << 512 << 3e-8 << "m" << 13.16e-9;
        QTest::newRow("aarhus mul") << "*/test_mul.mul"
                                    << "Aarhus MUL/FLM" << 4 << 512 << 512 << 1e-7 << "m" << 5.22e-9;
        QTest::newRow("aarhus flm") << "*/test_flm.flm"
                                    << "Aarhus MUL/FLM" << 5 << 512 << 512 << 1e-7 << "m" << 21.46e-9;
        QTest::newRow("nanoscope 9") << "bruker_nanoscope/di-3.di"
                                     << "Bruker Nanoscope" << 4 << 256 << 256 << 1e-5 << "m" << 1210e-9;
        QTest::newRow("nanoscope 7") << "bruker_nanoscope/di-1.di"
                                     << "Bruker Nanoscope" << 4 << 512 << 512 << 5e-7 << "m" << 59.2e-9;
        QTest::newRow("gwyddion") << "gwyddion_gwy/test_single_image.gwy"
                                  << "Gwyddion GWY" << 1 << 512 << 512 << 3e-8 << "m" << 13.16e-9;
        QTest::newRow("park") << "park_tiff/example_ps.tiff"
                              << "Park TIFF" << 1 << 512 << 512 << 1e-6 << "m" << 36.69e-9;
        QTest::newRow("matrix") << "omicron_flat/20201111--4_1.Z_mtrx"
                                << "Omicron MATRIX" << 2 << 400 << 400 << 1e-7 << "m" << 2.73e-9;
        QTest::newRow("czi grey") << "zeiss_czi/s_1_t_1_c_1_z_1.czi"
                                  << "Zeiss CZI" << 1 << 475 << 325 << 514.6e-6 << "" << 919.0;
        QTest::newRow("czi colour") << "zeiss_czi/RGB-8bit.czi"
                                    << "Zeiss CZI" << 1 << 924 << 624 << 1.001e-3 << "" << -1.0;
    }

    void readsEverySample()
    {
        QFETCH(QString, file);
        QFETCH(QString, format);
        QFETCH(int, channels);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(double, sizeX);
        QFETCH(QString, zUnit);
        QFETCH(double, zRange);
        InstrumentFile result;
        QString message;
        QVERIFY2(InstrumentImporters::readFile(sample(file), &result, &message), qPrintable(message));
        QCOMPARE(result.format, format);
        QCOMPARE(result.channels.size(), channels);
        for (const ImportedChannel& c : qAsConst(result.channels)) {
            QCOMPARE(c.width, width);
            QCOMPARE(c.height, height);
            QCOMPARE(c.z.size(), qsizetype(width) * height);
            QVERIFY(std::abs(c.sciValues.sizeX - sizeX) < sizeX * 1e-3);
            QCOMPARE(c.sciValues.xUnitPerPixel, c.sciValues.sizeX / width);
            QVERIFY(!c.title.isEmpty());
        }
        const ImportedChannel& first = result.channels.first();
        const ImportedChannel& unitChannel = format == QStringLiteral("RHK SM4") ? result.channels.at(0) : first;
        QCOMPARE(unitChannel.sciValues.zUnit, zUnit);
        if (zRange > 0) {
            const auto [lo, hi] = std::minmax_element(first.z.cbegin(), first.z.cend());
            QVERIFY2(std::abs((*hi - *lo) - zRange) < zRange * 0.01, qPrintable(QString::number(*hi - *lo)));
        }
    }

    // The first stored value must land where the instrument showed it: top or bottom row, left or right.
    void putsTheFirstStoredValueInItsCorner()
    {
        InstrumentFile f;
        QString m;
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("nanonis_sxm/sxm_moire_10nm.sxm")), &f, &m));
        QVERIFY(std::abs(z(f.channels[0], 0, 159) - 1.0568659e-07) < 1e-13); // scan down: top left
        QVERIFY(std::abs(z(f.channels[1], 159, 159) - 1.0538999e-07) < 1e-13); // backward: top right
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("createc_dat/A250407.141806.dat")), &f, &m));
        QVERIFY(std::abs(z(f.channels[0], 0, 255) - -1.4816185e-07) < 1e-13);
        QCOMPARE(headerValue(f.channels[0], QStringLiteral("Incomplete scan")), QStringLiteral("9 of 256 rows"));
        QCOMPARE(headerValue(f.channels[0], QStringLiteral("Date")), QStringLiteral("2025-04-07 14:18:06"));
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("gwyddion_gwy/test_single_image.gwy")), &f, &m));
        QVERIFY(std::abs(z(f.channels[0], 0, 511) - -3.9055147e-09) < 1e-15);
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("omicron_flat/20201111--4_1.Z_mtrx")), &f, &m));
        QVERIFY(std::abs(z(f.channels[0], 0, 0) - -5.1307077e-07) < 1e-13); // up pass: bottom left
        QVERIFY(std::abs(z(f.channels[1], 399, 0) - -5.1374220e-07) < 1e-13); // retrace: bottom right
    }

    // The same measurement stored bottom-first (.mul) and top-first (.gwy) must give the same item.
    void bottomFirstAndTopFirstFilesAgree()
    {
        InstrumentFile mul, gwy;
        QString m;
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("*/test_single_image.mul")), &mul, &m));
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("gwyddion_gwy/test_single_image.gwy")), &gwy, &m));
        for (qsizetype i = 0; i < mul.channels[0].z.size(); i += 997)
            QVERIFY(std::abs(mul.channels[0].z[i] - gwy.channels[0].z[i]) < 1e-15);
    }

    // Forward and backward images of one scan look alike only when backward rows were turned the right way.
    void forwardAndBackwardImagesMatch_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("forward");
        QTest::addColumn<int>("backward");
        QTest::newRow("nanonis") << "nanonis_sxm/sxm_moire_10nm.sxm" << 0 << 1;
        QTest::newRow("rhk") << "rhk_sm4/topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.sm4" << 5 << 4;
        QTest::newRow("matrix") << "omicron_flat/20201111--4_1.Z_mtrx" << 0 << 1;
        QTest::newRow("createc") << "createc_dat/createc_scan_qplus_10ch_afm.dat" << 0 << 5;
        QTest::newRow("nanoscope") << "bruker_nanoscope/di-3.di" << 0 << 3;
    }

    void forwardAndBackwardImagesMatch()
    {
        QFETCH(QString, file);
        QFETCH(int, forward);
        QFETCH(int, backward);
        InstrumentFile f;
        QString m;
        QVERIFY(InstrumentImporters::readFile(sample(file), &f, &m));
        const double r = correlation(f.channels[forward], f.channels[backward]);
        QVERIFY2(r > 0.5, qPrintable(QString::number(r)));
    }

    // Park's TIFF picture is a preview of the data the right way up: the two must look alike.
    void parkDataMatchesItsPreview()
    {
        const QString path = sample(QStringLiteral("park_tiff/example_ps.tiff"));
        InstrumentFile data, preview;
        QString m;
        QVERIFY(InstrumentImporters::readFile(path, &data, &m));
        if (!PictureImporter().read(bytes(path), path, &preview, &m))
            QSKIP("no TIFF reader for the preview");
        const ImportedChannel& z = data.channels.first();
        ImportedChannel halved = preview.channels.first();
        QCOMPARE(halved.width * 2, z.width);
        for (int x = 0; x < halved.width; ++x) {
            for (int y = 0; y < halved.height; ++y)
                halved.z[qsizetype(x) * halved.height + y] = z.z.at(qsizetype(2 * x) * z.height + 2 * y);
        }
        QVERIFY(correlation(halved, preview.channels.first()) > 0.9);
    }

    void skipsSpectraAndRefusesFilesWithoutImages()
    {
        InstrumentFile f;
        QString m;
        QVERIFY(InstrumentImporters::readFile(
            sample(QStringLiteral("rhk_sm4/hopg_300k_2020_08_11_16_04_06_999.sm4")), &f, &m));
        QCOMPARE(f.skipped, QStringList { QStringLiteral("2 spectrum or line pages") });
        const QString iz = sample(QStringLiteral("rhk_sm4/Iz_gold_9K_2019_12_18_13_49_32_752.sm4"));
        QVERIFY(!InstrumentImporters::readFile(iz, &f, &m));
        QCOMPARE(m, QStringLiteral("Unable to read from file: ") + iz + QStringLiteral(" (no image data)"));
    }

    void recognisesContentBeforeTheName()
    {
        QTemporaryDir dir;
        const QString renamed = dir.filePath(QStringLiteral("scan.dat"));
        QVERIFY(QFile::copy(sample(QStringLiteral("nanonis_sxm/sxm_moire_10nm.sxm")), renamed));
        InstrumentFile f;
        QString m;
        QVERIFY2(InstrumentImporters::readFile(renamed, &f, &m), qPrintable(m));
        QCOMPARE(f.format, QStringLiteral("Nanonis SXM"));
        // Converted line ends shift every binary offset of a Nanoscope file.
        QByteArray di = bytes(sample(QStringLiteral("bruker_nanoscope/di-3.di")));
        di.replace("\r\n", "\n");
        QVERIFY(!InstrumentImporters::readData(di, QStringLiteral("x.di"), &f, &m));
        QVERIFY(m.contains(QStringLiteral("line endings")));
    }

    void itemCarriesCalibrationHeaderAndPicture()
    {
        const QString path = sample(QStringLiteral("nanonis_sxm/sxm_moire_10nm.sxm"));
        InstrumentFile f;
        QString m;
        QVERIFY(InstrumentImporters::readFile(path, &f, &m));
        QSciImage item;
        InstrumentImporters::toItem(f, 2, path, item);
        QCOMPARE(item.name(), QStringLiteral("sxm_moire_10nm Current forward"));
        QCOMPARE(item.size(), QSize(160, 160));
        QCOMPARE(item.sciValues().zUnit, QStringLiteral("A"));
        QVERIFY(std::abs(item.sciValues().offsetX - (4.709271e-7 - 5e-9)) < 1e-15);
        QCOMPARE(item.instrumentHeader().first(), qMakePair(QStringLiteral("Format"), QStringLiteral("Nanonis SXM")));
        QCOMPARE(item.z(3, 4), f.channels[2].z[3 * 160 + 4]);
        // Rendered from z: the lowest and the highest point get different colours.
        const auto [lo, hi] = std::minmax_element(f.channels[2].z.cbegin(), f.channels[2].z.cend());
        const qsizetype iLo = lo - f.channels[2].z.cbegin(), iHi = hi - f.channels[2].z.cbegin();
        QVERIFY(item.pixel(int(iLo / 160), int(iLo % 160)) != item.pixel(int(iHi / 160), int(iHi % 160)));
    }

    // Broken copies of every sample: cut short they are refused with a message; with bytes changed they are
    // read or refused, never a crash, a hang or a giant allocation (the sanitizer build and the fuzz targets
    // go further).
    void refusesTruncatedAndSurvivesCorruptedCopies_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString& folder :
            QDir(QStringLiteral(VELMORA_SAMPLES_DIR)).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            for (const QString& name : QDir(sample(folder)).entryList(QDir::Files)) {
                if (!name.endsWith(QStringLiteral("_0001.mtrx")) && !name.startsWith(QStringLiteral("Iz_")))
                    QTest::newRow(qPrintable(name)) << folder + QLatin1Char('/') + name;
            }
        }
    }

    void refusesTruncatedAndSurvivesCorruptedCopies()
    {
        QFETCH(QString, file);
        const QString path = sample(file);
        const QByteArray original = bytes(path);
        InstrumentFile f;
        QString m;
        for (double fraction : { 0.0, 0.001, 0.1, 0.3, 0.5, 0.7, 0.9 }) {
            const int cut = int(original.size() * fraction) + 3;
            QVERIFY2(
                !InstrumentImporters::readData(original.left(cut), path, &f, &m), qPrintable(QString::number(cut)));
            QVERIFY(m.startsWith(QStringLiteral("Unable to read from file: ")));
        }
        QRandomGenerator random(1234);
        for (int round = 0; round < 24; ++round) {
            QByteArray copy = original;
            // Mostly in the headers, where sizes and offsets live.
            const int span = round % 4 == 0 ? copy.size() : qMin(copy.size(), 4096);
            for (int flips = 1 + round % 3; flips > 0; --flips)
                copy[random.bounded(span)] = char(random.bounded(256));
            if (!InstrumentImporters::readData(copy, path, &f, &m))
                QVERIFY(!m.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestInstrumentImporters)
#include "tst_instrumentimporters.moc"
