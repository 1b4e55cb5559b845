#include "core/history/qscihistorymanager.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"
#include "core/processing/qscidenoise.h"
#include "core/project/collectiontab.h"
#include "core/project/effectoperations.h"
#include "core/project/project.h"
#include "core/script/qsciscriptcore.h"
#include "core/script/qsciscripthost.h"
#include "core/script/qsciscriptthread.h"
#include "core/script/scriptlog.h"

#include "../../support/scopedsettings.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

/** Collects what a run writes: default output lines, "name: text" for named outputs, and errors. */
class RecordingHost final : public QSciScriptHost {
public:
    using QSciScriptHost::QSciScriptHost;
    QStringList output;
    QStringList errors;
    QStringList messages;

protected:
    void writeOutput(const QString& text, bool defaultOutput, const QString& outputName) override
    {
        output << (defaultOutput ? text : outputName + QStringLiteral(": ") + text);
    }
    void showError(const QString&, const QString& text) override { errors << text; }
    void reportMessage(const QString& text) override { messages << text; }
};

QSciImage* spikeItem(CollectionTab* tab)
{
    auto* item = new QSciImage(9, 7, Qt::white);
    for (int x = 0; x < 9; ++x)
        for (int y = 0; y < 7; ++y)
            item->setZ(x, y, 0.5 * x + y);
    item->setZ(4, 3, 1000);
    item->setName(QStringLiteral("spikes"));
    tab->addItem(item);
    return item;
}

} // namespace

class TestQSciScript : public QObject {
    Q_OBJECT

private:
    /** Runs @p script to its end on a script thread while this thread serves the host. */
    bool run(const QString& script, const QMap<QString, QString>& args = {})
    {
        QSciScriptThread thread(script, m_host.get(), args);
        QSignalSpy finished(&thread, &QThread::finished);
        thread.start();
        if (!finished.wait(20000))
            qWarning("script did not finish");
        QCoreApplication::processEvents();
        if (thread.failed())
            qWarning("%s", qPrintable(m_host->errors.join(QLatin1Char('\n'))));
        return !thread.failed();
    }

    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<Project> m_project;
    std::unique_ptr<RecordingHost> m_host;

private slots:
    void initTestCase()
    {
        ScriptLog::setQuiet(true);
        m_settings = std::make_unique<ScopedSettings>();
    }

    void cleanupTestCase() { m_settings.reset(); }

    void init()
    {
        m_project = std::make_unique<Project>();
        m_project->addTab();
        m_host = std::make_unique<RecordingHost>(m_project.get());
    }

    void cleanup()
    {
        m_host.reset();
        m_project.reset();
        QSciHistoryManager::instance()->forget();
    }

    void printsInOrderWithArgsAndPlaceholderLookups()
    {
        spikeItem(m_project->currentTab());
        QVERIFY(run(QStringLiteral("sciPrint('one'); sciPrintText('two', 'log'); sciPrint(args.file + '/' + args.n);\n"
                                   "sciPrint(qsciGetAllImages().length + ',' + qsciGetActiveImages().length);\n"
                                   "sciPrint(qsciGetImageByName('spikes') === null);\n"
                                   "try { qsciGetImageByName(''); } catch (e) { sciPrint(e); }"),
            { { QStringLiteral("file"), QStringLiteral("a.img.velm") },
                { QStringLiteral("n"), QStringLiteral("3") } }));
        QCOMPARE(m_host->output,
            QStringList({ "one", "log: two", "a.img.velm/3", "0,0", "true", "qsciGetImageByName: No name given!" }));
    }

    void anEmptyScriptRunsNothing()
    {
        const int steps = QSciHistoryManager::instance()->undoNames().size();
        QVERIFY(run(QString()));
        QVERIFY(m_host->output.isEmpty() && m_host->errors.isEmpty());
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), steps);
        QVERIFY(
            run(QStringLiteral("var i = new sciImage('x'); sciPrint(typeof i.deleteLater + typeof i.objectName);")));
        QCOMPARE(m_host->output, QStringList { "undefinedundefined" });
    }

    void uncaughtExceptionsAreReportedWithTheirLine_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("expected");
        QTest::newRow("string") << "sciPrint('a');\nthrow 'boom';"
                                << "Script threw an uncaught exception: boom (line 2)";
        QTest::newRow("Error") << "var a = 1;\n\nthrow new Error('bad value');"
                               << "Script threw an uncaught exception: Error: bad value (line 3)";
        QTest::newRow("uncaught guard") << "var i = new sciImage('x');\ni.mapZToImage();"
                                        << "Script threw an uncaught exception: Missing call to begin() before "
                                           "modifying image (line 2)";
        QTest::newRow("not evaluable") << "function f() {"
                                       << "This script can not be evaluated!";
    }

    void uncaughtExceptionsAreReportedWithTheirLine()
    {
        QFETCH(QString, script);
        QFETCH(QString, expected);
        QVERIFY(!run(script));
        QCOMPARE(m_host->errors, QStringList { expected });
    }

    void guardsThrowCatchablyUntilBegin()
    {
        QVERIFY(run(QStringLiteral("var i = new sciImage('x');\n"
                                   "try { i.mapImageToZ(); } catch (e) { sciPrint('E: ' + e); }\n"
                                   "try { i.getName(); } catch (e) { sciPrint('M: ' + e); }\n"
                                   "i.beginMeta(); sciPrint(i.getName()); i.select(); sciPrint(i.isSelected());\n"
                                   "try { i.saveToFile('x'); } catch (e) { sciPrint('still E'); }\n"
                                   "i.end(); try { i.isSelected(); } catch (e) { sciPrint('ended'); }")));
        QCOMPARE(m_host->output,
            QStringList({ "E: Missing call to begin() before modifying image",
                "M: Missing call to begin() before modifying image", "New item", "true", "still E", "ended" }));
    }

    void savesAndLoadsThroughTheNativeFile()
    {
        QSciImage* source = spikeItem(m_project->currentTab());
        const QString in = m_settings->filePath(QStringLiteral("in.img.velm"));
        const QString out = m_settings->filePath(QStringLiteral("out.img.velm"));
        QVERIFY(ItemFile::save(*source, in, QSciImage::AllParts, false, false, nullptr));
        QVERIFY(run(QStringLiteral("var i = new sciImage('x'); i.begin();\n"
                                   "sciPrint(i.loadFromFile(args.file) + ' ' + i.getName());\n"
                                   "sciPrint(i.saveToFile(args.out)); sciPrint(i.saveToFile(''));\n"
                                   "sciPrint(i.loadFromFile(args.file + '.missing'));"),
            { { QStringLiteral("file"), in }, { QStringLiteral("out"), out } }));
        QCOMPARE(m_host->output, QStringList({ "true spikes", "true", "false", "false" }));
        QCOMPARE(m_host->messages.value(0), QStringLiteral("Unable to save to file: EMPTY FILENAME"));
        QVERIFY(m_host->messages.value(1).startsWith(QStringLiteral("File does not exist: ")));
        QSciImage back;
        QVERIFY(ItemFile::load(back, out, false, false, nullptr));
        QCOMPARE(back.zMatrix(), source->zMatrix());
        // The script's item left edit mode as the run ended.
        for (const QSciImage* item : m_project->allItems())
            QVERIFY(!item->isInEditMode());
    }

    void oneRunIsOneUndoStep()
    {
        QSciImage* source = spikeItem(m_project->currentTab());
        const QString in = m_settings->filePath(QStringLiteral("in.img.velm"));
        QVERIFY(ItemFile::save(*source, in, QSciImage::AllParts, false, false, nullptr));
        QSciImage expected;
        expected.copyFrom(*source);
        QCOMPARE(EffectOperations::apply(*m_project, { &expected }, QSciDenoise({ 1.0, 1, false })),
            EffectOperations::Outcome::Applied);
        QSciHistoryManager* history = QSciHistoryManager::instance();
        const int stepsBefore = history->undoNames().size();

        QVERIFY(run(QStringLiteral("for (var k = 0; k < 3; ++k) {\n"
                                   "  var i = new sciImage('x'); i.begin(); i.loadFromFile(args.file);\n"
                                   "  sciPrint(i.denoise(1) === '');\n"
                                   "}"),
            { { QStringLiteral("file"), in } }));
        QCOMPARE(m_host->output, QStringList({ "true", "true", "true" }));
        QCOMPARE(history->undoNames().size(), stepsBefore + 1);
        QCOMPARE(history->undoNames().constLast(), QStringLiteral("Script execution"));
        const QList<QSciImage*> items = m_project->allItems();
        QCOMPARE(items.size(), 4);
        for (int k = 1; k < 4; ++k)
            QCOMPARE(items.at(k)->zMatrix(), expected.zMatrix());

        QVERIFY(history->undo());
        QCOMPARE(m_project->allItems(), QList<QSciImage*> { source });
        QVERIFY(history->redo());
        QCOMPARE(m_project->allItems().size(), 4);
        QCOMPARE(m_project->allItems().at(3)->zMatrix(), expected.zMatrix());
    }

    void aThrowingRunLeavesNoTrace()
    {
        QSciImage* source = spikeItem(m_project->currentTab());
        const QString in = m_settings->filePath(QStringLiteral("in.img.velm"));
        QVERIFY(ItemFile::save(*source, in, QSciImage::AllParts, false, false, nullptr));
        const QVector<double> before = source->zMatrix();
        const int stepsBefore = QSciHistoryManager::instance()->undoNames().size();
        QVERIFY(!run(QStringLiteral("var i = new sciImage('x'); i.begin(); i.loadFromFile(args.file);\n"
                                    "i.derivative({ mode: 'gradient', points: 1 }); i.mapZToImage();\n"
                                    "throw 'late';"),
            { { QStringLiteral("file"), in } }));
        QCOMPARE(m_project->allItems(), QList<QSciImage*> { source });
        QCOMPARE(source->zMatrix(), before);
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), stepsBefore);
    }

    void effectsReportRefusalsAndResults()
    {
        QVERIFY(run(QStringLiteral("var i = new sciImage('x'); i.begin();\n"
                                   "sciPrint(i.derivative({ points: 80 }));\n"
                                   "sciPrint(i.derivative({ angle: 10 }));\n"
                                   "sciPrint(i.denoise(-1));\n"
                                   "sciPrint(i.objectRecognition());")));
        QCOMPARE(m_host->output.size(), 4);
        QCOMPARE(m_host->output.at(0), QStringLiteral("Number of chosen neighbour points exceeds image dimensions!"));
        QVERIFY(m_host->output.at(1).startsWith(QStringLiteral("derivative: ")));
        QVERIFY(m_host->output.at(2).startsWith(QStringLiteral("denoise: ")));
        // A blank item has nothing to find, and says so.
        QCOMPARE(m_host->output.at(3), QStringLiteral("0 objects found"));
    }

    void stopEndsAnEndlessLoopWithinASecond_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("busy") << "while (true) {}";
        QTest::newRow("waiting on commands") << "var i = new sciImage('x'); i.begin(); while (true) i.paint();";
        QTest::newRow("catching everything") << "while (true) { try { while (true) {} } catch (e) {} }";
    }

    void stopEndsAnEndlessLoopWithinASecond()
    {
        QFETCH(QString, script);
        QSciScriptThread thread(script, m_host.get());
        QSignalSpy finished(&thread, &QThread::finished);
        thread.start();
        QTest::qWait(200);
        QVERIFY(thread.isRunning());
        QElapsedTimer clock;
        clock.start();
        thread.requestStop();
        QVERIFY(finished.wait(5000));
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QCoreApplication::processEvents();
        QVERIFY(!QSciHistoryManager::instance()->inTransaction());
        QVERIFY(!m_host->isRunning());
    }

    void syntaxCheckNamesLineAndColumn()
    {
        QCOMPARE(QSciScriptCore::syntaxErrorLine(QStringLiteral("var a = 1;")), QString());
        const QString line = QSciScriptCore::syntaxErrorLine(QStringLiteral("var a = 1;\nvar = ;"));
        QVERIFY2(line.startsWith(QStringLiteral("[ERROR] line 2, col ")), qPrintable(line));
    }
};

QTEST_GUILESS_MAIN(TestQSciScript)
#include "tst_qsciscript.moc"
