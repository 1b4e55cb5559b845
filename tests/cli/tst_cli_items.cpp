#include "clirunner.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliItems : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void synthIsDeterministicAndTextMatricesRoundTrip()
    {
        const QString a = path("a.img.velm"), b = path("b.img.velm");
        QCOMPARE(cli({ "synth", "--size", "17x9", "--seed", "5", "--out", a }).exitCode, 0);
        QCOMPARE(cli({ "synth", "--size", "17x9", "--seed", "5", "--out", b }).exitCode, 0);
        const CliResult za = cli({ "export-z", a });
        QCOMPARE(za.exitCode, 0);
        QCOMPARE(za.out, cli({ "export-z", b }).out);
        const QList<QByteArray> lines = za.out.trimmed().split('\n');
        QCOMPARE(lines.size(), 9);
        QCOMPARE(lines.first().split('\t').size(), 17);

        QFile text(path("z.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write(za.out);
        text.close();
        QCOMPARE(cli({ "import-z", path("z.txt"), "--out", path("c.img.velm"), "--z-unit", "nm" }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("c.img.velm") }).out, za.out);
        const QJsonObject imported
            = QJsonDocument::fromJson(cli({ "info", path("c.img.velm") }).out).object().value("properties").toObject();
        QCOMPARE(imported.value("sciValues.zUnit").toString(), QString("nm"));
    }

    void importReadsTopRowFirstAndAnyBlanks()
    {
        QFile text(path("m.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("1  2 3\n\n4\t5\t6\n");
        text.close();
        QCOMPARE(cli({ "import-z", path("m.txt"), "--out", path("m.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("m.img.velm") }).out, QByteArray("1\t2\t3\n4\t5\t6\n"));
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("r.img.velm"), "rotate+90" }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("r.img.velm") }).out, QByteArray("4\t1\n5\t2\n6\t3\n"));
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("f.img.velm"), "flip-v" }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("f.img.velm") }).out, QByteArray("4\t5\t6\n1\t2\t3\n"));
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("k.img.velm"), "recalibrate-z", "--multiply", "2",
                         "--add", "-1" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("k.img.velm") }).out, QByteArray("1\t3\t5\n7\t9\t11\n"));
    }

    void maskRectCountsRowsFromTheTop()
    {
        QCOMPARE(cli({ "new", "--size", "4x3", "--color", "#102030", "--out", path("n.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "apply", path("n.img.velm"), "--out", path("n2.img.velm"), "mask-rect", "--rect", "1,0,2,2" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-mask", path("n2.img.velm") }).out, QByteArray("0\t1\t1\t0\n0\t1\t1\t0\n0\t0\t0\t0\n"));
        QCOMPARE(cli({ "apply", path("n2.img.velm"), "--out", path("n3.img.velm"), "cut-to-mask-border" }).exitCode, 0);
        QCOMPARE(cli({ "export-mask", path("n3.img.velm") }).out, QByteArray("1\t1\n1\t1\n"));
    }

    void renderWritesThePicture()
    {
        QCOMPARE(cli({ "new", "--size", "3x2", "--color", "#102030", "--out", path("p.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "render", path("p.img.velm"), "--out", path("p.png") }).exitCode, 0);
        const QImage image(path("p.png"));
        QCOMPARE(image.size(), QSize(3, 2));
        QCOMPARE(image.pixelColor(2, 1), QColor(0x10, 0x20, 0x30));
        QCOMPARE(
            cli({ "render", path("p.img.velm"), "--out", path("g.png"), "--from-z", "--gradient", "2" }).exitCode, 0);
        QVERIFY(QImage(path("g.png")).pixelColor(0, 0) != QColor(0x10, 0x20, 0x30));
    }

    void renderDecorationsWrapsThePicture()
    {
        QCOMPARE(cli({ "new", "--size", "40x30", "--color", "#102030", "--out", path("d.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "render", path("d.img.velm"), "--out", path("d.png"), "--decorations" }).exitCode, 0);
        const QImage figure(path("d.png"));
        QVERIFY(figure.width() > 40 + 20 && figure.height() > 30);

        // Without rulers on it, the picture stands unchanged inside the margins.
        QCOMPARE(cli({ "render", path("d.img.velm"), "--out", path("z.png"), "--display", "showZScale=1", "--display",
                         "showXLabels=1" })
                     .exitCode,
            0);
        const QImage scaled = QImage(path("z.png")).convertToFormat(QImage::Format_RGB32);
        QVERIFY(scaled.width() > 40 && scaled.height() > 30);
        QPoint corner(-1, -1);
        for (int y = 0; y < scaled.height() && corner.x() < 0; ++y)
            for (int x = 0; x < scaled.width() && corner.x() < 0; ++x)
                if (scaled.pixel(x, y) == qRgb(0x10, 0x20, 0x30))
                    corner = QPoint(x, y);
        QImage bare(40, 30, QImage::Format_RGB32);
        bare.fill(QColor(0x10, 0x20, 0x30));
        QCOMPARE(scaled.copy(QRect(corner, bare.size())), bare);

        const CliResult bad
            = cli({ "render", path("d.img.velm"), "--out", path("x.png"), "--display", "showNothing=1" });
        QCOMPARE(bad.exitCode, 2);
        QVERIFY(!QFile::exists(path("x.png")));
    }

    void infoDescribesTheFile()
    {
        // A known matrix, wider than tall, so that a size taken from the wrong side shows.
        QFile text(path("known.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("1 2 3\n4 5 -9\n");
        text.close();
        QCOMPARE(cli({ "import-z", path("known.txt"), "--out", path("k.img.velm"), "--x-size", "6", "--y-size", "0.5",
                         "--x-unit", "nm", "--y-unit", "pm", "--z-unit", "pA" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "apply", path("k.img.velm"), "--out", path("k2.img.velm"), "mask-rect", "--rect", "0,0,2,1" })
                     .exitCode,
            0);
        const CliResult info = cli({ "info", path("k2.img.velm"), "--objects" });
        QCOMPARE(info.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(info.out).object();
        QCOMPARE(json.value("type").toString(), QString("image"));
        QCOMPARE(json.value("width").toInt(), 3);
        QCOMPARE(json.value("height").toInt(), 2);
        QCOMPARE(json.value("parts").toString(), QString("11111"));
        QCOMPARE(json.value("maskSelected").toInt(), 2);
        QCOMPARE(json.value("objects").toInt(), 0);
        QVERIFY(json.value("objectRecords").isArray());
        const QJsonObject z = json.value("z").toObject();
        QCOMPARE(z.value("min").toDouble(), -9.0);
        QCOMPARE(z.value("max").toDouble(), 5.0);
        QCOMPARE(z.value("mean").toDouble(), 1.0);
        const QJsonObject properties = json.value("properties").toObject();
        const auto real
            = [&properties](const char* key) { return properties.value(QLatin1String(key)).toString().toDouble(); };
        QCOMPARE(real("sciValues.size.x"), 6.0);
        QCOMPARE(real("sciValues.size.y"), 0.5);
        QCOMPARE(real("sciValues.xUnitPerPixel"), 2.0);
        QCOMPARE(real("sciValues.yUnitPerPixel"), 0.25);
        QCOMPARE(properties.value("sciValues.xUnit").toString(), QString("nm"));
        QCOMPARE(properties.value("sciValues.yUnit").toString(), QString("pm"));
        QCOMPARE(properties.value("sciValues.zUnit").toString(), QString("pA"));

        // Without the options a point is one unit on each side, whatever the shape.
        QCOMPARE(cli({ "import-z", path("known.txt"), "--out", path("plain.img.velm") }).exitCode, 0);
        const QJsonObject plain = QJsonDocument::fromJson(cli({ "info", path("plain.img.velm") }).out)
                                      .object()
                                      .value("properties")
                                      .toObject();
        QCOMPARE(plain.value("sciValues.size.x").toString().toDouble(), 3.0);
        QCOMPARE(plain.value("sciValues.size.y").toString().toDouble(), 2.0);
        QCOMPARE(plain.value("sciValues.xUnitPerPixel").toString().toDouble(), 1.0);
        QCOMPARE(plain.value("sciValues.yUnitPerPixel").toString().toDouble(), 1.0);
        QCOMPARE(plain.value("sciValues.zUnit").toString(), QString());
        QCOMPARE(cli({ "info", path("nothing.img.velm") }).exitCode, 1);
    }

    void failuresAndUsageErrors()
    {
        const CliResult missing = cli({ "export-z", path("nope.img.velm") });
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.contains("File does not exist: "));
        QCOMPARE(cli({ "new", "--size", "0x3", "--out", path("x.img.velm") }).exitCode, 2);
        QCOMPARE(cli({ "new", "--size", "65536x65536", "--out", path("x.img.velm") }).exitCode, 2);
        QCOMPARE(cli({ "new", "--size", "3x3" }).exitCode, 2);
        QCOMPARE(cli({ "apply", path("p.img.velm"), "--out", path("x.img.velm"), "explode" }).exitCode, 2);
        QCOMPARE(
            cli({ "apply", path("p.img.velm"), "--out", path("x.img.velm"), "mask-rect", "--rect", "1,2" }).exitCode,
            2);
        QVERIFY(!QFile::exists(path("x.img.velm")));
        QFile bad(path("bad.img.velm"));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("12|garbage");
        bad.close();
        const CliResult broken = cli({ "apply", path("bad.img.velm"), "--out", path("x.img.velm"), "flip-h" });
        QCOMPARE(broken.exitCode, 1);
        QVERIFY(broken.err.contains("Unable to read from file: "));
        QVERIFY(!QFile::exists(path("x.img.velm")));
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    CliResult cli(const QStringList& args) { return runCli(m_dir.filePath(QStringLiteral("settings")), args); }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliItems)
#include "tst_cli_items.moc"
