#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/project/projectfile.h"
#include "core/settings/options.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestProjectFile : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Options::initialize(m_settings.path()); }

    void savedProjectsReopenAndLeaveNoStaleFiles()
    {
        Project project;
        CollectionTab* first = project.addTab(QStringLiteral("scans"));
        CollectionTab* second = project.addTab(QStringLiteral("odd/name"));
        for (int i = 0; i < 3; ++i) {
            auto* item = new QSciImage(4 + i, 3, Qt::white);
            item->setZ(1, 2, 10.0 * i);
            item->setName(QStringLiteral("item %1").arg(i));
            item->setPosition(10 * i, -5 * i);
            item->setSelected(i == 1);
            (i < 2 ? first : second)->addItem(item);
        }
        project.setCurrentIndex(1);
        const QString folder = m_work.filePath(QStringLiteral("p"));
        QString message;
        QVERIFY2(ProjectFile::save(project, folder, nullptr, &message), qPrintable(message));
        QVERIFY(!project.isModified());
        delete first->takeItem(first->items().first());
        QVERIFY(ProjectFile::save(project, folder, nullptr, &message));
        // Only the second save's item files and the manifest are left.
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 3);

        Project reopened;
        QVERIFY2(ProjectFile::load(reopened, folder, nullptr, &message), qPrintable(message));
        QVERIFY(message.isEmpty());
        QCOMPARE(reopened.tabs().size(), 2);
        QCOMPARE(reopened.tab(1)->name(), QStringLiteral("odd/name"));
        QCOMPARE(reopened.currentIndex(), 1);
        const QSciImage* item = reopened.tab(0)->items().first();
        QCOMPARE(item->name(), QStringLiteral("item 1"));
        QCOMPARE(item->tabRect(), QRect(10, -5, 5, 3));
        QVERIFY(item->isSelected());
        QCOMPARE(item->z(1, 2), 10.0);
        QVERIFY(item->fileName().isEmpty());
        QCOMPARE(reopened.tab(1)->items().first()->size(), QSize(6, 3));
    }

    void unreadableManifestKeepsTheOpenProject()
    {
        const QString folder = m_work.filePath(QStringLiteral("broken"));
        QDir().mkpath(folder);
        QFile manifest(QDir(folder).filePath(ProjectFile::manifestName()));
        QVERIFY(manifest.open(QIODevice::WriteOnly));
        manifest.write("12|not a project");
        manifest.close();
        Project project;
        project.addTab()->addItem(new QSciImage(2, 2, Qt::white));
        QString message;
        QVERIFY(!ProjectFile::load(project, folder, nullptr, &message));
        QVERIFY(message.startsWith(QStringLiteral("Unable to read from file: ")));
        QCOMPARE(project.tabs().first()->count(), 1);
        QVERIFY(!ProjectFile::load(project, m_work.filePath(QStringLiteral("none")), nullptr, &message));
        QVERIFY(message.startsWith(QStringLiteral("File does not exist: ")));
    }

private:
    QTemporaryDir m_settings;
    QTemporaryDir m_work;
};

QTEST_GUILESS_MAIN(TestProjectFile)
#include "tst_projectfile.moc"
