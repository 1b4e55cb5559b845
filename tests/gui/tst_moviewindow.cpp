#include "../support/scopedsettings.h"

#include <QAction>
#include <QLabel>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "core/media/ffmpegcommands.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/project.h"
#include "gui/media/formexportmovie.h"
#include "gui/media/formimportaviframes.h"
#include "scriptedwindow.h"

class TestMovieWindow : public QObject {
    Q_OBJECT

    std::unique_ptr<ScopedSettings> m_settings;
    QTemporaryDir m_work;

    std::unique_ptr<ScriptedWindow> windowWithItems(int count)
    {
        auto w = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        for (int i = 0; i < count; ++i) {
            auto* item = new QSciImage(31, 20, QColor(i * 100, i * 100, i * 100));
            item->setPosition(i * 40, 0);
            ItemArrangement::addNew(*w->project(), w->project()->currentTab(), item, QStringLiteral("Create"));
            item->setSelected(true);
        }
        return w;
    }

private slots:
    void init() { m_settings = std::make_unique<ScopedSettings>(); }
    void cleanup() { m_settings.reset(); }

    void exportedItemsComeBackAsOneUndoableImport()
    {
        if (FfmpegCommands::ffmpeg().isEmpty() || FfmpegCommands::ffprobe().isEmpty())
            QSKIP("ffmpeg and ffprobe are not installed");
        auto w = windowWithItems(3);
        const QString movie = m_work.filePath(QStringLiteral("three.mp4"));
        QString oddNote, log;
        w->fillDialog = [&](QDialog* dialog) {
            auto* form = qobject_cast<FormExportMovie*>(dialog);
            if (!form)
                return false;
            oddNote = form->findChild<QLabel*>(QStringLiteral("lbOddSize"))->text();
            form->setOutput(movie);
            if (!form->start())
                return false;
            (void)QTest::qWaitFor([form] { return !form->isRunning(); }, 30000);
            log = form->logText();
            return form->succeeded();
        };
        w->findChild<QAction*>(QStringLiteral("actionExport_movie"))->trigger();
        QVERIFY2(QFile::exists(movie), qPrintable(log));
        QVERIFY(oddNote.contains(QStringLiteral("32 x 20")));
        QVERIFY(log.startsWith(QStringLiteral("Starting encoder...")));
        QVERIFY(log.endsWith(QStringLiteral("Finished")));

        int offered = 0;
        w->fillDialog = [&](QDialog* dialog) {
            auto* form = qobject_cast<FormImportAVIframes*>(dialog);
            if (!form)
                return false;
            form->setMovie(movie);
            offered = form->frameCount();
            (void)QTest::qWaitFor([form] { return !form->previewFrame().isNull(); }, 20000);
            return !form->previewFrame().isNull();
        };
        w->findChild<QAction*>(QStringLiteral("actionImport_movie"))->trigger();
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QCOMPARE(offered, 3);
        const QList<QSciImage*> items = w->project()->currentTab()->items();
        QCOMPARE(items.size(), 6);
        QCOMPARE(items.last()->size(), QSize(32, 20));
        QVERIFY(!items.last()->tabRect().intersects(items.first()->tabRect()));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(w->project()->currentTab()->items().size(), 3);
    }

    void missingFfmpegIsExplainedBeforeExport()
    {
        Options::setString(QStringLiteral("FormOptions.ffmpegPath"), m_work.path());
        auto w = windowWithItems(1);
        QString shown;
        w->fillDialog = [&shown](QDialog* dialog) {
            if (auto* box = qobject_cast<QMessageBox*>(dialog))
                shown = box->text();
            return false;
        };
        w->findChild<QAction*>(QStringLiteral("actionExport_movie"))->trigger();
        QVERIFY(shown.contains(QStringLiteral("ffmpeg")));
        QVERIFY(shown.contains(QStringLiteral("https://")));
    }
};

QTEST_MAIN(TestMovieWindow)
#include "tst_moviewindow.moc"
