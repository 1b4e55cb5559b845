#include "core/settings/options.h"
#include "core/settings/settingsstore.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestSettingsStore : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_store = std::make_unique<SettingsStore>();
        QVERIFY(m_store->open(m_dir.filePath(QStringLiteral("settings.db")), true));
    }
    void cleanup()
    {
        m_store.reset();
        QFile::remove(m_dir.filePath(QStringLiteral("settings.db")));
    }

    void missingKeysGiveTheCallersDefault()
    {
        SettingsStore* s = m_store.get();
        QCOMPARE(Options::getString(QStringLiteral("A.text"), QStringLiteral("dflt"), s), QStringLiteral("dflt"));
        QCOMPARE(Options::getInt(QStringLiteral("A.int"), -7, s), -7);
        QCOMPARE(Options::getDouble(QStringLiteral("A.real"), 2.5, s), 2.5);
        QCOMPARE(Options::getBool(QStringLiteral("A.on"), true, s), true);
        QCOMPARE(Options::getBool(QStringLiteral("A.off"), false, s), false);
        QCOMPARE(Options::getColor(QStringLiteral("A.color"), Qt::red, s), QColor(Qt::red));
    }

    void setReplacesAndKeepsOneRow()
    {
        SettingsStore* s = m_store.get();
        QVERIFY(Options::setString(QStringLiteral("A.key"), QStringLiteral("one"), s));
        QVERIFY(Options::setString(QStringLiteral("A.key"), QStringLiteral("two"), s));
        QCOMPARE(Options::getString(QStringLiteral("A.key"), QString(), s), QStringLiteral("two"));
        QCOMPARE(s->prefixedKeys(QStringLiteral("A.")).size(), 1);
        QVERIFY(Options::remove(QStringLiteral("A.key"), s));
        QVERIFY(Options::remove(QStringLiteral("A.key"), s)); // removing what is not there succeeds
        QCOMPARE(Options::getString(QStringLiteral("A.key"), QStringLiteral("gone"), s), QStringLiteral("gone"));
    }

    void typedValuesAsStored()
    {
        SettingsStore* s = m_store.get();
        Options::setBool(QStringLiteral("B.flag"), true, s);
        QCOMPARE(Options::getString(QStringLiteral("B.flag"), QString(), s), QStringLiteral("1"));
        Options::setString(QStringLiteral("B.flag"), QStringLiteral("true"), s);
        QCOMPARE(Options::getBool(QStringLiteral("B.flag"), true, s), false);
        Options::setDouble(QStringLiteral("B.real"), 1.0 / 3.0, s);
        QCOMPARE(Options::getString(QStringLiteral("B.real"), QString(), s), QStringLiteral("0.333333333333"));
        Options::setDouble(QStringLiteral("B.big"), 1.5e20, s);
        QCOMPARE(Options::getString(QStringLiteral("B.big"), QString(), s), QStringLiteral("1.5e+20"));
        Options::setColor(QStringLiteral("B.color"), QColor(1, 2, 3, 4), s);
        QCOMPARE(Options::getString(QStringLiteral("B.color"), QString(), s), QStringLiteral("1;2;3;4"));
        QCOMPARE(Options::getColor(QStringLiteral("B.color"), Qt::black, s), QColor(1, 2, 3, 4));
    }

    void numbersThatDoNotParse()
    {
        SettingsStore* s = m_store.get();
        Options::setString(QStringLiteral("C.int"), QStringLiteral("12abc"), s);
        QCOMPARE(Options::getInt(QStringLiteral("C.int"), 5, s), 5);
        Options::setString(QStringLiteral("C.real"), QString(), s);
        QCOMPARE(Options::getDouble(QStringLiteral("C.real"), 0.25, s), 0.25);
        Options::setString(QStringLiteral("C.ok"), QStringLiteral("42"), s);
        QCOMPARE(Options::getInt(QStringLiteral("C.ok"), 5, s), 42);
    }

    void prefixIsAnUnescapedCaseBlindPattern()
    {
        SettingsStore* s = m_store.get();
        s->set(QStringLiteral("tools.LEFTCOLOR"), QStringLiteral("x"));
        s->set(QStringLiteral("ToolsXleftColor"), QStringLiteral("x"));
        s->set(QStringLiteral("Other.key"), QStringLiteral("x"));
        QStringList keys = s->prefixedKeys(QStringLiteral("Tools.left"));
        QCOMPARE(keys, QStringList { QStringLiteral("tools.LEFTCOLOR") });
        keys = s->prefixedKeys(QStringLiteral("Tools_left"));
        keys.sort();
        QCOMPARE(keys, (QStringList { QStringLiteral("ToolsXleftColor"), QStringLiteral("tools.LEFTCOLOR") }));
        QVERIFY(s->prefixedKeys(QStringLiteral("Nothing")).isEmpty());
    }

    void nonAsciiReadsBackAsLatin1Bytes()
    {
        SettingsStore* s = m_store.get();
        const QString value = QStringLiteral("\u00b5m");
        s->set(QStringLiteral("D.unit"), value);
        QString read;
        QVERIFY(s->get(QStringLiteral("D.unit"), read));
        QCOMPARE(read, QString::fromLatin1(value.toUtf8()));
        QCOMPARE(read.size(), 3);
    }

    void closedStoreFailsQuietly()
    {
        SettingsStore closed;
        QVERIFY(!closed.open(m_dir.filePath(QStringLiteral("missing.db")), false));
        QVERIFY(!closed.isOpen());
        QVERIFY(!Options::setString(QStringLiteral("E.x"), QStringLiteral("1"), &closed));
        QCOMPARE(Options::getInt(QStringLiteral("E.x"), 3, &closed), 3);
        QVERIFY(closed.prefixedKeys(QString()).isEmpty());
        QVERIFY(!closed.remove(QStringLiteral("E.x")));
        QVERIFY(!QFile::exists(m_dir.filePath(QStringLiteral("missing.db"))));
    }

    void fileThatIsNotSqliteGivesDefaults()
    {
        const QString path = m_dir.filePath(QStringLiteral("broken.db"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(4096, 'x'));
        file.close();
        SettingsStore broken;
        broken.open(path, true);
        QVERIFY(!Options::setString(QStringLiteral("F.x"), QStringLiteral("1"), &broken));
        QCOMPARE(Options::getString(QStringLiteral("F.x"), QStringLiteral("d"), &broken), QStringLiteral("d"));
        QVERIFY(broken.prefixedKeys(QStringLiteral("F")).isEmpty());
    }

    void workingFoldersAreMadeBelowTheSettingsFolder()
    {
        const QString root = m_dir.filePath(QStringLiteral("app"));
        Options::initialize(root);
        QCOMPARE(Options::settingsDir(), root + QLatin1Char('/'));
        QCOMPARE(Options::historyDir(), root + QStringLiteral("/history/"));
        for (const QString& dir :
            { Options::projectDir(), Options::historyDir(), Options::swapDir(), Options::tempDir() })
            QVERIFY2(QFileInfo(dir).isDir(), qPrintable(dir));
        QVERIFY(QFile::exists(root + QStringLiteral("/settings.db")));
        Options::setString(QStringLiteral("history.historyDir"), m_dir.filePath(QStringLiteral("elsewhere")));
        Options::initialize(root);
        QCOMPARE(Options::historyDir(), m_dir.filePath(QStringLiteral("elsewhere/")));
        Options::shutdown();
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SettingsStore> m_store;
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
