#include "samplefiles.h"
#include "core/import/importsupport.h"
#include "core/import/instrumentimporters.h"
#include "core/items/qsciimage.h"

#include <QDir>
#include <QFile>
#include <QtTest>
#include <cmath>

namespace {

QByteArray bytes(const QString& relative)
{
    QFile file(sample(relative));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString headerValue(const ImportedChannel& channel, const QString& key)
{
    for (const auto& entry : channel.header) {
        if (entry.first == key)
            return entry.second;
    }
    return QStringLiteral("<missing>");
}

} // namespace

/** Units, acquisition parameters and offsets per format, and forged sizes that must not allocate. */
class TestImporterDetails : public QObject {
    Q_OBJECT

private slots:
    void unitsWithPrefixesBecomeBaseUnits_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<double>("factor");
        QTest::newRow("nm") << "nm"
                            << "m" << 1e-9;
        QTest::newRow("micro sign") << QStringLiteral("\u00B5m") << "m" << 1e-6;
        QTest::newRow("greek mu") << QStringLiteral("\u03BCm") << "m" << 1e-6;
        QTest::newRow("nanoscope tilde") << "~m"
                                         << "m" << 1e-6;
        QTest::newRow("um") << "um"
                            << "m" << 1e-6;
        QTest::newRow("lone metre") << "m"
                                    << "m" << 1.0;
        QTest::newRow("millivolt") << "mV"
                                   << "V" << 1e-3;
        QTest::newRow("picoampere") << "pA"
                                    << "A" << 1e-12;
        QTest::newRow("angstrom") << QStringLiteral("\u00C5") << "m" << 1e-10;
        QTest::newRow("per volt") << "nA/V"
                                  << "A/V" << 1e-9;
        QTest::newRow("kilohertz") << "kHz"
                                   << "Hz" << 1e3;
        QTest::newRow("degree") << QStringLiteral("\u00BA") << "deg" << 1.0;
        QTest::newRow("unknown stays") << "counts"
                                       << "counts" << 1.0;
    }

    void unitsWithPrefixesBecomeBaseUnits()
    {
        QFETCH(QString, text);
        QFETCH(QString, unit);
        QFETCH(double, factor);
        double f = 0;
        QCOMPARE(ImportSupport::baseUnit(text, &f), unit);
        QCOMPARE(f, factor);
    }

    void acquisitionParametersAndOffsets_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("channel");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("sxm bias") << "nanonis_sxm/sxm_moire_10nm.sxm" << 0 << "Bias"
                                  << "2.688E-1 V";
        QTest::newRow("sxm setpoint") << "nanonis_sxm/sxm_moire_10nm.sxm" << 0 << "Setpoint"
                                      << "3.000E-11 A";
        QTest::newRow("sxm comment") << "nanonis_sxm/sxm_moire_10nm.sxm" << 0 << "Comment"
                                     << "4.4K";
        QTest::newRow("createc bias") << "createc_dat/A250407.141806.dat" << 1 << "Bias"
                                      << "653.80 mV";
        QTest::newRow("rhk bias") << "rhk_sm4/topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.sm4" << 5 << "Bias"
                                  << "0.5 V";
        QTest::newRow("rhk direction") << "rhk_sm4/topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.sm4" << 0
                                       << "Direction"
                                       << "backward";
        QTest::newRow("aarhus date") << "*/test_single_image.mul" << 0 << "Date"
                                     << "2020-12-07 19:16:23";
        QTest::newRow("aarhus sample") << "*/test_single_image.mul" << 0 << "Sample"
                                       << "Pt111";
        QTest::newRow("aarhus bias") << "*/test_single_image.mul" << 0 << "Bias"
                                     << "1.25 V";
        QTest::newRow("gwy meta") << "gwyddion_gwy/test_single_image.gwy" << 0 << "Bias"
                                  << "1.25000 V";
        QTest::newRow("nanoscope direction") << "bruker_nanoscope/di-3.di" << 1 << "Direction"
                                             << "backward";
        QTest::newRow("nanoscope microscope") << "bruker_nanoscope/di-3.di" << 0 << "Microscope"
                                              << "Dimension Icon";
        QTest::newRow("park mode") << "park_tiff/example_ps.tiff" << 0 << "Image mode"
                                   << "Tapping";
        QTest::newRow("matrix bias") << "omicron_flat/20201111--4_1.Z_mtrx" << 0 << "Bias"
                                     << "0.6 V";
        QTest::newRow("matrix setpoint") << "omicron_flat/20201111--4_1.Z_mtrx" << 0 << "Setpoint"
                                         << "3e-10 A";
        QTest::newRow("matrix date") << "omicron_flat/20201111--4_1.Z_mtrx" << 0 << "Date"
                                     << "2020-11-11T09:07:26Z";
        QTest::newRow("czi channel") << "zeiss_czi/s_1_t_1_c_1_z_1.czi" << 0 << "Channel name"
                                     << "Bright";
    }

    void acquisitionParametersAndOffsets()
    {
        QFETCH(QString, file);
        QFETCH(int, channel);
        QFETCH(QString, key);
        QFETCH(QString, value);
        if (!QDir(QStringLiteral(VELMORA_SAMPLES_DIR)).exists())
            QSKIP("sample instrument files not available");
        InstrumentFile f;
        QString m;
        QVERIFY2(InstrumentImporters::readFile(sample(file), &f, &m), qPrintable(m));
        QCOMPARE(headerValue(f.channels.at(channel), key), value);
    }

    void physicalOffsetsAndChannelUnits()
    {
        if (!QDir(QStringLiteral(VELMORA_SAMPLES_DIR)).exists())
            QSKIP("sample instrument files not available");
        InstrumentFile f;
        QString m;
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("*/test_single_image.mul")), &f, &m));
        QVERIFY(std::abs(f.channels[0].sciValues.offsetX - 85.9e-9) < 1e-12);
        QVERIFY(std::abs(f.channels[0].sciValues.offsetY - 75.5e-9) < 1e-12);
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("omicron_flat/20201111--4_1.Z_mtrx")), &f, &m));
        QVERIFY(std::abs(f.channels[0].sciValues.offsetX - (-16.5e-9 - 50e-9)) < 1e-11); // centre minus half the frame
        QVERIFY(std::abs(f.channels[0].sciValues.offsetY - (281.5e-9 - 50e-9)) < 1e-11);
        QVERIFY(InstrumentImporters::readFile(sample(QStringLiteral("bruker_nanoscope/di-3.di")), &f, &m));
        QCOMPARE(f.channels[1].sciValues.zUnit, QStringLiteral("V"));
        QCOMPARE(f.channels[2].sciValues.zUnit, QStringLiteral("deg"));
        QVERIFY(InstrumentImporters::readFile(
            sample(QStringLiteral("createc_dat/createc_scan_qplus_10ch_afm.dat")), &f, &m));
        QCOMPARE(f.channels[1].sciValues.zUnit, QStringLiteral("A"));
        QCOMPARE(f.channels[2].sciValues.zUnit, QString()); // other signals stay raw
    }

    // A header that claims a huge image over a small file is refused before anything that size is allocated.
    void forgedSizesAreRefused()
    {
        if (!QDir(QStringLiteral(VELMORA_SAMPLES_DIR)).exists())
            QSKIP("sample instrument files not available");
        InstrumentFile f;
        QString m;
        QByteArray sxm = bytes(QStringLiteral("nanonis_sxm/sxm_moire_10nm.sxm"));
        sxm.replace(":SCAN_PIXELS:\n       160       160", ":SCAN_PIXELS:\n     40000     40000");
        QVERIFY(!InstrumentImporters::readData(sxm, QStringLiteral("x.sxm"), &f, &m));
        QVERIFY(m.endsWith(QStringLiteral("(File corrupted.)")));

        QByteArray dat = bytes(QStringLiteral("createc_dat/A250407.141806.dat"));
        const int numX = dat.indexOf("Num.X / Num.X=");
        QVERIFY(numX > 0);
        dat.replace(numX, 17, "Num.X / Num.X=999");
        QByteArray wide = dat;
        wide.replace("Num.Y / Num.Y=256", "Num.Y / Num.Y=99999");
        QVERIFY(!InstrumentImporters::readData(wide, QStringLiteral("x.dat"), &f, &m));

        QByteArray park = bytes(QStringLiteral("park_tiff/example_ps.tiff"));
        const int header = 1050617; // the image header tag's data
        qint32 huge = 30000;
        park.replace(header + 100, 4, reinterpret_cast<const char*>(&huge), 4);
        park.replace(header + 104, 4, reinterpret_cast<const char*>(&huge), 4);
        QVERIFY(!InstrumentImporters::readData(park, QStringLiteral("x.tiff"), &f, &m));

        QByteArray gwy = bytes(QStringLiteral("gwyddion_gwy/test_single_image.gwy"));
        const int data = gwy.indexOf(QByteArray("data\0D", 6)) + 6;
        quint32 count = 0x40000000;
        gwy.replace(data, 4, reinterpret_cast<const char*>(&count), 4);
        QVERIFY(!InstrumentImporters::readData(gwy, QStringLiteral("x.gwy"), &f, &m));
    }

    void importedItemsStartTheirLogWithTheirSource()
    {
        InstrumentFile file;
        ImportedChannel channel;
        channel.title = QStringLiteral("Z forward");
        channel.width = channel.height = 2;
        channel.z = { 1, 2, 3, 4 };
        file.channels.append(channel);
        QSciImage item;
        InstrumentImporters::toItem(file, 0, QStringLiteral("/data/scan 7.sxm"), item);
        QCOMPARE(item.processingLog().size(), 1);
        QVERIFY2(item.processingLog().first().endsWith(QStringLiteral("Import  file=scan 7.sxm, channel=Z forward")),
            qPrintable(item.processingLog().first()));
    }
};

QTEST_GUILESS_MAIN(TestImporterDetails)
#include "tst_importerdetails.moc"
