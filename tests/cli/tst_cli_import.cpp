#include "clirunner.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliImport : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_settings;
    const QString m_samples = QStringLiteral(VELMORA_SAMPLES_DIR);

private slots:
    void initTestCase()
    {
        if (!QDir(m_samples).exists())
            QSKIP("sample instrument files not available");
    }

    void infoListsTheChannels()
    {
        const CliResult r = runCli(m_settings.path(),
            { QStringLiteral("info"), m_samples + QStringLiteral("/nanonis_sxm/sxm_moire_10nm.sxm") });
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(r.out).object();
        QCOMPARE(json.value(QStringLiteral("type")).toString(), QStringLiteral("instrument"));
        QCOMPARE(json.value(QStringLiteral("format")).toString(), QStringLiteral("Nanonis SXM"));
        const QJsonArray channels = json.value(QStringLiteral("channels")).toArray();
        QCOMPARE(channels.size(), 4);
        const QJsonObject first = channels.at(0).toObject();
        QCOMPARE(first.value(QStringLiteral("title")).toString(), QStringLiteral("Z forward"));
        QCOMPARE(first.value(QStringLiteral("width")).toInt(), 160);
        QCOMPARE(first.value(QStringLiteral("xSize")).toDouble(), 1e-8);
        QCOMPARE(first.value(QStringLiteral("xUnit")).toString(), QStringLiteral("m"));
        QCOMPARE(channels.at(2).toObject().value(QStringLiteral("zUnit")).toString(), QStringLiteral("A"));
        const double zMin = first.value(QStringLiteral("z")).toObject().value(QStringLiteral("min")).toDouble();
        QVERIFY(std::abs(zMin - 1.0538e-7) < 1e-11);
    }

    void importWritesOneItemPerChannelThatInfoReadsBack()
    {
        QTemporaryDir out;
        const QString file
            = m_samples + QStringLiteral("/rhk_sm4/topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.sm4");
        CliResult r
            = runCli(m_settings.path(), { QStringLiteral("import"), file, QStringLiteral("--out-dir"), out.path() });
        QCOMPARE(r.exitCode, 0);
        const QStringList written = QDir(out.path()).entryList(QDir::Files, QDir::Name);
        QCOMPARE(written.size(), 6);
        QCOMPARE(written.first(), QStringLiteral("topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.0.img.velm"));
        r = runCli(m_settings.path(), { QStringLiteral("info"), out.filePath(written.last()) });
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(r.out).object();
        QCOMPARE(json.value(QStringLiteral("width")).toInt(), 128);
        bool sawBias = false;
        for (const QJsonValue& pair : json.value(QStringLiteral("header")).toArray())
            sawBias = sawBias || pair.toArray().at(0).toString() == QStringLiteral("Bias");
        QVERIFY(sawBias);

        QTemporaryDir one;
        r = runCli(m_settings.path(),
            { QStringLiteral("import"), file, QStringLiteral("--out-dir"), one.path(), QStringLiteral("--channel"),
                QStringLiteral("5") });
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(QDir(one.path()).entryList(QDir::Files),
            QStringList { QStringLiteral("topo_ABC_Graphite-Sample5_9K_2021_08_13_19_11_10_065.5.img.velm") });
    }

    void failuresAndUsage()
    {
        QTemporaryDir out;
        const QString spectra = m_samples + QStringLiteral("/rhk_sm4/Iz_gold_9K_2019_12_18_13_49_32_752.sm4");
        CliResult r
            = runCli(m_settings.path(), { QStringLiteral("import"), spectra, QStringLiteral("--out-dir"), out.path() });
        QCOMPARE(r.exitCode, 1);
        QVERIFY(r.err.contains("no image data"));
        QVERIFY(QDir(out.path()).isEmpty());
        r = runCli(m_settings.path(),
            { QStringLiteral("import"), m_samples + QStringLiteral("/nanonis_sxm/sxm_moire_10nm.sxm"),
                QStringLiteral("--out-dir"), out.path(), QStringLiteral("--channel"), QStringLiteral("9") });
        QCOMPARE(r.exitCode, 1);
        r = runCli(m_settings.path(), { QStringLiteral("import"), spectra });
        QCOMPARE(r.exitCode, 2);
    }
};

QTEST_GUILESS_MAIN(TestCliImport)
#include "tst_cli_import.moc"
