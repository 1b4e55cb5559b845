#include "core/base/compressedblock.h"
#include "core/base/taggedtextwriter.h"
#include "core/plots/plot2dfile.h"
#include "core/plots/plot3dfile.h"
#include "core/tables/velmdocumentfile.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

void writeAll(const QString& path, const QByteArray& data)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(data);
}

/** A document text of our container around @p content, as a hand-made or damaged file would hold it. */
QByteArray container(const QString& type, const QString& content)
{
    const QString text = QStringLiteral("<header|<type|") + type + QStringLiteral("|type>|header><content|") + content
        + QStringLiteral("|content>");
    return CompressedBlock::compress(text.toUtf8(), 6).toByteArray();
}

/** A value for @p key that differs from its default and survives as text. */
QString changed(const QString& key, const QString& defaultValue, int salt)
{
    if (defaultValue == QLatin1String("1") || defaultValue == QLatin1String("0"))
        return defaultValue == QLatin1String("1") ? QStringLiteral("0") : QStringLiteral("1");
    return QStringLiteral("%1 <%2|&;>").arg(key).arg(salt);
}

} // namespace

class TestPlotFiles : public QObject {
    Q_OBJECT

private slots:
    void plot2dRoundTripsEverySettingAndCurve()
    {
        Plot2dDocument document;
        int salt = 0;
        for (const auto& pair : Plot2dDocument::settingDefaults())
            document.setSetting(pair.first, changed(pair.first, pair.second, ++salt));
        document.geometry = QRect(-20, 35, 640, 480);
        Plot2dCurve a { QStringLiteral("height | width"), { QStringLiteral("x"), QStringLiteral("h;1") },
            { 0, 1.5, 1e-300, -2.25, 3, qQNaN() } };
        Plot2dCurve empty { QStringLiteral("nothing yet"), { QStringLiteral("x"), QStringLiteral("y") }, {} };
        document.curves = { a, empty };

        const QString path = m_dir.filePath("all.plot2d.velm");
        QString message;
        QVERIFY2(Plot2dFile::write(document, path, &message), qPrintable(message));
        Plot2dDocument read;
        QVERIFY2(Plot2dFile::read(path, &read, &message), qPrintable(message));
        QCOMPARE(read.settings(), document.settings());
        QCOMPARE(read.geometry, document.geometry);
        QCOMPARE(read.curves.size(), 2);
        QCOMPARE(read.curves[0].plotName, a.plotName);
        QCOMPARE(read.curves[0].variables, a.variables);
        QCOMPARE(read.curves[0].values.size(), 6);
        QCOMPARE(read.curves[0].values[2], 1e-300);
        QVERIFY(qIsNaN(read.curves[0].values[5]));
        QCOMPARE(read.curves[1].pointCount(), 0);
    }

    void plot2dRefusals_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        const QString notVelm = QStringLiteral("File does not contain .velm data.");
        const QString corrupted = QStringLiteral("Unfortunately, the file is corrupted and cannot be loaded!");
        QTest::newRow("not compressed") << QByteArray("<header|<type|2dPlot|type>|header>") << notVelm;
        QTest::newRow("wrong prefix")
            << CompressedBlock::compress(QByteArray("<head|<type|x|type>|head>"), 6).toByteArray() << notVelm;
        QTest::newRow("too short") << CompressedBlock::compress(QByteArray("<header|"), 6).toByteArray() << notVelm;
        QTest::newRow("unparsable")
            << CompressedBlock::compress(QByteArray("<header|<type|2dPlot|type>|oops>"), 6).toByteArray()
            << QStringLiteral("File corrupted.");
        QTest::newRow("no settings") << container(QStringLiteral("2dPlot"), QStringLiteral("<plotData||plotData>"))
                                     << corrupted;
        QTest::newRow("short values") << container(QStringLiteral("2dPlot"),
            QStringLiteral("<settings|<title|t|title>|settings><plotData|<plot|<valueLength|3|valueLength>"
                           "<values|1;2|values>|plot>|plotData>"))
                                      << corrupted;
        QTest::newRow("no plots") << container(QStringLiteral("2dPlot"),
            QStringLiteral("<settings|<title|t|title>|settings><plotData|<other|x|other>|plotData>"))
                                  << QStringLiteral("File contains no 2d plot data!");
    }

    void plot2dRefusals()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        const QString path = m_dir.filePath("bad.plot2d.velm");
        writeAll(path, bytes);
        Plot2dDocument document;
        document.setSetting(QStringLiteral("title"), QStringLiteral("kept"));
        QString message;
        QVERIFY(!Plot2dFile::read(path, &document, &message));
        QVERIFY2(message.startsWith(expected), qPrintable(message));
        QVERIFY(message.endsWith(path));
        QCOMPARE(document.setting(QStringLiteral("title")), QStringLiteral("kept"));
    }

    void plot2dShortGeometryAndEmptyCurveStillLoad()
    {
        const QString path = m_dir.filePath("short.plot2d.velm");
        writeAll(path,
            container(QStringLiteral("2dPlot"),
                QStringLiteral("<version|1|version><settings|<title|t|title>|settings><geometry|1;2|geometry>"
                               "<plotData|<plot|<plotName|p|plotName><valueLength|0|valueLength>"
                               "<values||values>|plot>|plotData>")));
        Plot2dDocument document;
        QString message;
        QVERIFY2(Plot2dFile::read(path, &document, &message), qPrintable(message));
        QCOMPARE(document.geometry, Plot2dDocument().geometry);
        QCOMPARE(document.curves.size(), 1);
        QVERIFY(document.curves[0].values.isEmpty());
    }

    void plot3dRoundTripsSettingsAndData()
    {
        Plot3dDocument document;
        int salt = 0;
        for (const auto& pair : Plot3dDocument::settingDefaults())
            document.setSetting(pair.first, changed(pair.first, pair.second, ++salt));
        document.geometry = QRect(5, 6, 700, 500);
        document.width = 3;
        document.height = 2;
        document.z = { 1, 2, 3, 4, qQNaN(), 6.000000000000001 };
        document.updateRange();
        document.itemName = QStringLiteral("</script><script>alert(1)</script>");
        document.xUnit = QStringLiteral("nm");
        document.zUnit = QStringLiteral("pA");
        document.xSize = 12.5;
        document.ySize = 7;
        const QString path = m_dir.filePath("surface.plot3d.velm");
        QString message;
        QVERIFY2(Plot3dFile::write(document, path, &message), qPrintable(message));
        Plot3dDocument read;
        QVERIFY2(Plot3dFile::read(path, &read, &message), qPrintable(message));
        QCOMPARE(read.settings(), document.settings());
        QCOMPARE(read.geometry, document.geometry);
        QCOMPARE(read.width, 3);
        QCOMPARE(read.height, 2);
        QCOMPARE(read.zMin, 1.0);
        QCOMPARE(read.zMax, 6.000000000000001);
        QCOMPARE(read.z[5], document.z[5]);
        QVERIFY(qIsNaN(read.z[4]));
        QCOMPARE(read.itemName, document.itemName);
        QCOMPARE(read.xUnit, document.xUnit);
        QCOMPARE(read.xSize, 12.5);
    }

    void plot3dRefusals()
    {
        const QString path = m_dir.filePath("bad.plot3d.velm");
        QString message;
        Plot3dDocument document;
        writeAll(path, QByteArray("plain text"));
        QVERIFY(!Plot3dFile::read(path, &document, &message));
        QVERIFY2(message.startsWith(QStringLiteral("File does not contain .velm data.")), qPrintable(message));
        // Data that does not fill the stated size, and a size no item can have, are a broken tree.
        for (const QString& content :
            { QStringLiteral("<settings||settings><imageWidth|2|imageWidth><imageHeight|2|imageHeight>"
                             "<zMin|0|zMin><zMax|1|zMax><data|1;2;3|data>"),
                QStringLiteral("<settings||settings><imageWidth|-4|imageWidth><imageHeight|2|imageHeight>"
                               "<zMin|0|zMin><zMax|1|zMax><data||data>") }) {
            writeAll(path, container(QStringLiteral("3dPlot"), content));
            QVERIFY(!Plot3dFile::read(path, &document, &message));
            QVERIFY2(
                message.startsWith(QStringLiteral("The file is corrupted and cannot be loaded.")), qPrintable(message));
        }
        // A 2D plot file is no 3D plot.
        Plot2dDocument flat;
        flat.curves = { Plot2dCurve { QStringLiteral("c"), { QStringLiteral("x"), QStringLiteral("y") }, { 1, 2 } } };
        QVERIFY(Plot2dFile::write(flat, path, &message));
        QVERIFY(!Plot3dFile::read(path, &document, &message));
        QCOMPARE(document.width, 0);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestPlotFiles)
#include "tst_plotfiles.moc"
