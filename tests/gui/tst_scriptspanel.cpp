#include "../support/scopedsettings.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTabWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

#include "core/history/qscihistorymanager.h"
#include "core/project/project.h"
#include "core/script/scriptlog.h"
#include "gui/app/outputpage.h"
#include "gui/script/scripteditor.h"
#include "gui/script/scriptspanel.h"
#include "gui/tables/textspanel.h"
#include "scriptedwindow.h"

class TestScriptsPanel : public QObject {
    Q_OBJECT

private:
    void click(const char* name)
    {
        auto* button = m_window->findChild<QPushButton*>(QLatin1String(name));
        QVERIFY2(button && button->isEnabled(), name);
        button->click();
    }
    QString output() const { return m_window->findChild<OutputPage*>()->textEdit()->toPlainText(); }

    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<ScriptedWindow> m_window;

private slots:
    void init()
    {
        ScriptLog::setQuiet(true);
        m_settings = std::make_unique<ScopedSettings>();
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
    }
    void cleanup()
    {
        m_window.reset();
        m_settings.reset();
    }

    void runWritesToTheOutputPagesAndReportsFailures()
    {
        ScriptsPanel* panel = m_window->scriptsPanel();
        panel->currentEditor()->setPlainText("var i = new sciImage('x'); i.begin();\nsciPrint('made ' + "
                                             "i.getName());\nsciPrintText('a line', 'notes');");
        click("pbCompileAndRun");
        QTRY_VERIFY(!panel->isRunning());
        QVERIFY(output().contains("made New item"));
        const auto texts = m_window->textsPanel()->allTexts();
        QCOMPARE(texts.size(), 1);
        QCOMPARE(texts.first(), qMakePair(QStringLiteral("notes"), QStringLiteral("a line")));
        QCOMPARE(m_window->project()->allItems().size(), 1);

        panel->newScript(QString(), "sciPrint('x');\nundefinedFunction();");
        click("pbCompileAndRun");
        QTRY_VERIFY(!panel->isRunning());
        QCOMPARE(m_window->messages.size(), 1);
        QVERIFY(m_window->messages.first().startsWith("Script threw an uncaught exception: ReferenceError"));

        panel->currentEditor()->setPlainText("var = ;");
        click("pbCheckSyntax");
        QVERIFY(output().contains("[ERROR] line 1, col "));
    }

    void stopEndsABusyScriptWhileTheWindowRepaints()
    {
        ScriptsPanel* panel = m_window->scriptsPanel();
        // Commands and repaints alternate on the window's thread while the script waits for each one.
        panel->currentEditor()->setPlainText(
            "var i = new sciImage('x'); i.begin();\nfor (var k = 0; k < 200; ++k) i.paint();\nwhile (true) {}");
        click("pbCompileAndRun");
        QTRY_VERIFY(panel->isRunning());
        for (int k = 0; k < 20; ++k) {
            m_window->repaint();
            QTest::qWait(10);
        }
        QTRY_COMPARE(m_window->project()->allItems().size(), 1);
        QElapsedTimer clock;
        clock.start();
        click("pbStopScript");
        QTRY_VERIFY_WITH_TIMEOUT(!panel->isRunning(), 5000);
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!QSciHistoryManager::instance()->inTransaction());
        QVERIFY(!m_window->project()->allItems().first()->isInEditMode());
        QVERIFY(m_window->findChild<QPushButton*>("pbCompileAndRun")->isEnabled());
    }

    void scriptFilesRoundTripWithTheirName()
    {
        ScriptsPanel* panel = m_window->scriptsPanel();
        const QString text = "// \u00e9t\u00e9\nsciPrint('a');\n";
        panel->currentEditor()->setPlainText(text);
        const QString path = m_settings->filePath("saved");
        panel->chooseFile = [path](bool, const QString&, const QString&, const QString&) { return path; };
        click("pbSaveScriptAs");
        QVERIFY(QFile::exists(path + ".js"));
        QString message;
        QVERIFY(!panel->openScript(path + ".missing", &message));
        QVERIFY(message.startsWith("File does not exist: "));
        QVERIFY(panel->openScript(path + ".js", &message));
        QCOMPARE(panel->currentEditor()->toPlainText(), text);
        auto* tabs = m_window->findChild<QTabWidget*>("twScripts");
        QCOMPARE(tabs->tabText(tabs->currentIndex()), QStringLiteral("saved.js"));
    }

    void closingTheWindowEndsARun()
    {
        m_window->scriptsPanel()->currentEditor()->setPlainText("while (true) {}");
        click("pbCompileAndRun");
        QTRY_VERIFY(m_window->scriptsPanel()->isRunning());
        m_window.reset();
        QVERIFY(!QSciHistoryManager::instance()->inTransaction());
    }
};

QTEST_MAIN(TestScriptsPanel)
#include "tst_scriptspanel.moc"
