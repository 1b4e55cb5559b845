#include "../support/scopedsettings.h"
#include <memory>

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"
#include "core/items/textmatrix.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/project/projectfile.h"
#include "core/settings/options.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/imagegraphicsitem.h"
#include "gui/app/numberfield.h"
#include "scriptedwindow.h"

namespace {

QSciImage* addItem(CollectionTab* tab, const QString& name, QSize size, QPoint place, double base = 0)
{
    auto* item = new QSciImage(size.width(), size.height(), Qt::white);
    item->setName(name);
    for (int x = 0; x < size.width(); ++x)
        for (int y = 0; y < size.height(); ++y)
            item->setZ(x, y, base + x + 10 * y);
    item->setPixelSelected(0, 0, true);
    item->setPosition(place.x(), place.y());
    tab->addItem(item);
    return item;
}

void trigger(const MainWindow& window, const char* name)
{
    auto* action = window.findChild<QAction*>(QLatin1String(name));
    QVERIFY2(action, name);
    QVERIFY2(action->isEnabled(), name);
    action->trigger();
}

void selectAll(const MainWindow& window)
{
    window.findChild<QListWidget*>(QStringLiteral("imageListWidget"))->selectAll();
}

QByteArray head(const QString& path, int bytes)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(bytes) : QByteArray();
}

} // namespace

class TestMainWindowFiles : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<QTemporaryDir> m_work;

    QString work(const QString& name) const { return m_work->filePath(name); }

    std::unique_ptr<ScriptedWindow> window() { return shownWindowWithoutDemo<ScriptedWindow>(QSize(800, 600)); }

private slots:
    void init()
    {
        m_settings = std::make_unique<ScopedSettings>();
        m_work = std::make_unique<QTemporaryDir>();
        QVERIFY(m_settings->isValid() && m_work->isValid());
    }

    void cleanup()
    {
        m_settings.reset();
        m_work.reset();
    }

    void projectSurvivesSaveNewAndReopen()
    {
        auto w = window();
        CollectionTab* first = w->project()->currentTab();
        first->setName(QStringLiteral("terraces"));
        addItem(first, QStringLiteral("a"), QSize(5, 4), QPoint(3, 9), 1);
        addItem(first, QStringLiteral("b"), QSize(2, 7), QPoint(40, 2), -3)->setVisible(false);
        w->addCollectionTab(QStringLiteral("grains"));
        addItem(w->project()->currentTab(), QStringLiteral("c"), QSize(6, 6), QPoint(0, 0), 100);
        QVERIFY(w->project()->isModified());

        const QString folder = work(QStringLiteral("run7"));
        w->files << folder;
        trigger(*w, "actionSave_project");
        QVERIFY(w->messages.isEmpty());
        QVERIFY(QFile::exists(QDir(folder).filePath(ProjectFile::manifestName())));
        QVERIFY(!w->project()->isModified());
        QCOMPARE(w->lastProjectFilename(), QDir(folder).absolutePath());
        QCOMPARE(Options::getString(QStringLiteral("MainWindow.lastProjectFilename"), QString()),
            QDir(folder).absolutePath());
        QCOMPARE(w->dialogFolders.last(), QDir::homePath());
        QCOMPARE(Options::getString(QStringLiteral("MainWindow.saveMainDialogPath"), QString()), m_work->path());

        trigger(*w, "actionProject");
        QCOMPARE(w->project()->tabs().size(), 1);
        QCOMPARE(w->project()->allItems().size(), 0);
        QCOMPARE(w->findChild<QTabWidget*>(QStringLiteral("mainTabs"))->count(), 1);

        trigger(*w, "action_reopen_last_project");
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        const QList<CollectionTab*> tabs = w->project()->tabs();
        QCOMPARE(tabs.size(), 2);
        QCOMPARE(tabs.at(0)->name(), QStringLiteral("terraces"));
        QCOMPARE(tabs.at(1)->name(), QStringLiteral("grains"));
        auto* tabWidget = w->findChild<QTabWidget*>(QStringLiteral("mainTabs"));
        QCOMPARE(tabWidget->tabText(1), QStringLiteral("grains"));
        QCOMPARE(tabs.at(0)->count(), 2);
        const QSciImage* a = tabs.at(0)->items().at(0);
        const QSciImage* b = tabs.at(0)->items().at(1);
        QCOMPARE(a->name(), QStringLiteral("a"));
        QCOMPARE(a->tabRect(), QRect(3, 9, 5, 4));
        QCOMPARE(a->z(4, 3), 1.0 + 4 + 30);
        QVERIFY(a->isPixelSelected(0, 0));
        QCOMPARE(b->tabRect(), QRect(40, 2, 2, 7));
        QVERIFY(!b->isVisible());
        QCOMPARE(tabs.at(1)->items().at(0)->z(5, 5), 155.0);
        QCOMPARE(w->pageFor(tabs.at(0))->scene()->items().size(), 2);
        QVERIFY(!w->pageFor(tabs.at(0))->graphicsItem(b)->isVisible());
    }

    void newProjectAsksFirstWhenModified()
    {
        auto w = window();
        addItem(w->project()->currentTab(), QStringLiteral("keep"), QSize(2, 2), QPoint(0, 0));
        w->answer = QMessageBox::Cancel;
        trigger(*w, "actionProject");
        QCOMPARE(w->project()->allItems().size(), 1);

        // Yes saves first; without a chosen folder the new project does not come.
        w->answer = QMessageBox::Yes;
        trigger(*w, "actionProject");
        QCOMPARE(w->project()->allItems().size(), 1);
        w->files << work(QStringLiteral("kept"));
        trigger(*w, "actionProject");
        QCOMPARE(w->project()->allItems().size(), 0);
        QVERIFY(QFile::exists(work(QStringLiteral("kept/")) + ProjectFile::manifestName()));
    }

    void quitWithYesSavesTheProject()
    {
        auto w = window();
        addItem(w->project()->currentTab(), QStringLiteral("late"), QSize(2, 2), QPoint(0, 0));
        w->findChild<QListWidget*>(QStringLiteral("imageListWidget"))->item(0)->setSelected(true);
        trigger(*w, "popupImageList_flipVertical");
        QVERIFY(!QDir(Options::historyDir()).entryList({ QStringLiteral("*.tmp.img.velm") }).isEmpty());
        w->answer = QMessageBox::Yes;
        w->files << work(QStringLiteral("atquit"));
        QVERIFY(w->close());
        // A normal end takes the history files along.
        QVERIFY(QDir(Options::historyDir()).entryList({ QStringLiteral("*.tmp.img.velm") }).isEmpty());
        Project reread;
        QString message;
        QVERIFY2(ProjectFile::load(reread, work(QStringLiteral("atquit")), nullptr, &message), qPrintable(message));
        QCOMPARE(reread.allItems().size(), 1);
    }

    void openReadsItemsAndRefusesOtherFiles()
    {
        auto w = window();
        const QString foreign = work(QStringLiteral("notes.xyz"));
        {
            QFile file(foreign);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("not an image\n");
        }
        w->files << foreign;
        trigger(*w, "actionOpen_items");
        QCOMPARE(w->messages, QStringList { QStringLiteral("Unable to read from file: ") + foreign });
        QCOMPARE(w->project()->allItems().size(), 0);

        QSciImage stored(3, 2, Qt::white);
        stored.setName(QStringLiteral("stored"));
        stored.setZ(2, 1, 42);
        const QString native = work(QStringLiteral("stored.img.velm"));
        QString message;
        QVERIFY2(ItemFile::save(stored, native, QSciImage::AllParts, false, false, &message), qPrintable(message));
        addItem(w->project()->currentTab(), QStringLiteral("there"), QSize(10, 10), QPoint(0, 0));
        w->messages.clear();
        w->files << native;
        trigger(*w, "actionOpen_items");
        QVERIFY(w->messages.isEmpty());
        const QList<QSciImage*> items = w->project()->currentTab()->items();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.last()->z(2, 1), 42.0);
        // It does not land on top of what was there.
        QVERIFY(!items.last()->tabRect().intersects(items.first()->tabRect()));
        QCOMPARE(Options::getString(QStringLiteral("MainWindow.openMainDialogPath"), QString()), m_work->path());
        trigger(*w, "actionUndo");
        QCOMPARE(w->project()->currentTab()->count(), 1);
    }

    void savedItemsAndExportsReadBack()
    {
        auto w = window();
        CollectionTab* tab = w->project()->currentTab();
        QSciImage* a = addItem(tab, QStringLiteral("same"), QSize(4, 3), QPoint(0, 0), 0.25);
        QSciImage* b = addItem(tab, QStringLiteral("same"), QSize(2, 2), QPoint(10, 0), 7);
        selectAll(*w);
        QCOMPARE(w->selectedItems().size(), 2);

        const QString items = work(QStringLiteral("items"));
        QVERIFY(QDir().mkpath(items));
        w->files << items;
        trigger(*w, "actionSave_selected_items");
        const QStringList saved = QDir(items).entryList(QDir::Files, QDir::Name);
        QCOMPARE(saved, (QStringList { QStringLiteral("same.img.velm"), QStringLiteral("same_2.img.velm") }));
        QSciImage reread;
        QString message;
        QVERIFY(ItemFile::load(reread, QDir(items).filePath(saved.at(1)), true, true, &message));
        QCOMPARE(reread.zMatrix(), b->zMatrix());

        const QString exports = work(QStringLiteral("exports"));
        QVERIFY(QDir().mkpath(exports));
        w->files << exports << exports << exports;
        trigger(*w, "actionZ_Matrices");
        trigger(*w, "actionMasks");
        trigger(*w, "actionPictures_without_display_elements");
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QFile zText(QDir(exports).filePath(QStringLiteral("same.txt")));
        QVERIFY(zText.open(QIODevice::ReadOnly));
        QVector<double> z;
        int width = 0, height = 0;
        QVERIFY(TextMatrix::read(zText.readAll(), &z, &width, &height, &message));
        QCOMPARE(QSize(width, height), a->size());
        QCOMPARE(z, a->zMatrix());
        QFile maskText(QDir(exports).filePath(QStringLiteral("same_2_mask.txt")));
        QVERIFY(maskText.open(QIODevice::ReadOnly));
        QCOMPARE(maskText.readAll().trimmed(), QByteArray("0\t0\n1\t0"));
        QCOMPARE(QImage(QDir(exports).filePath(QStringLiteral("same.png"))).size(), QSize(4, 3));
        QCOMPARE(Options::getString(QStringLiteral("MainWindow.exportPath"), QString()), exports);

        w->files << work(QStringLiteral("area")) << work(QStringLiteral("area.pdf")) << work(QStringLiteral("area"));
        trigger(*w, "actionVisible_area_as_image");
        trigger(*w, "actionPdf_file");
        trigger(*w, "actionPostscript_file");
        const QImage area(work(QStringLiteral("area.png")));
        QCOMPARE(area.size(), w->currentCollectionTab()->view()->viewport()->size());
        QCOMPARE(area.pixel(1, 1), qRgb(255, 255, 255)); // the item's white picture, no selection frame
        QCOMPARE(head(work(QStringLiteral("area.pdf")), 5), QByteArray("%PDF-"));
        const QByteArray ps = head(work(QStringLiteral("area.ps")), 200);
        QVERIFY(ps.startsWith("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 "));
    }

    void displayElementsShowInTheViewAndInExports()
    {
        auto w = window();
        QSciImage* item = addItem(w->project()->currentTab(), QStringLiteral("figure"), QSize(60, 40), QPoint(0, 0));
        selectAll(*w);
        ImageGraphicsItem* shown = w->currentCollectionTab()->graphicsItem(item);
        QCOMPARE(shown->boundingRect(), QRectF(0, 0, 60, 40));

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormItemProperties"))
                return false;
            dialog->findChild<QCheckBox*>(QStringLiteral("cbShowZScale"))->setChecked(true);
            dialog->findChild<QCheckBox*>(QStringLiteral("cbShowTitle"))->setChecked(true);
            return true;
        };
        trigger(*w, "popupImageList_DisplayInfo");
        QCOMPARE(item->displayElements().value(QStringLiteral("showZLabels")), QStringLiteral("1"));
        const QRectF decorated = shown->boundingRect();
        QVERIFY(decorated.top() < 0 && decorated.right() > 60 + 20);

        const QString exports = work(QStringLiteral("figures"));
        QVERIFY(QDir().mkpath(exports));
        w->files << exports << exports << exports;
        trigger(*w, "actionPictures_with_display_elements");
        trigger(*w, "actionPdf_files");
        trigger(*w, "actionPostscript_ps_files");
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QCOMPARE(QImage(QDir(exports).filePath(QStringLiteral("figure.png"))).size(), decorated.size().toSize());
        QFile pdf(QDir(exports).filePath(QStringLiteral("figure.pdf")));
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        const QByteArray document = pdf.readAll();
        QVERIFY(document.startsWith("%PDF-") && document.trimmed().endsWith("%%EOF"));
        QVERIFY(head(QDir(exports).filePath(QStringLiteral("figure.ps")), 200).startsWith("%!PS-Adobe-3.0"));

        trigger(*w, "actionUndo");
        QCOMPARE(item->displayElements().value(QStringLiteral("showZScale")), QStringLiteral("0"));
        QCOMPARE(shown->boundingRect(), QRectF(0, 0, 60, 40));
    }

    void dialogsFeedTheirOperations()
    {
        auto w = window();
        CollectionTab* tab = w->project()->currentTab();
        QSciImage* a = addItem(tab, QStringLiteral("a"), QSize(3, 3), QPoint(0, 0), 1);
        QSciImage* b = addItem(tab, QStringLiteral("b"), QSize(3, 3), QPoint(10, 20), 2);
        selectAll(*w);

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormRecalibrateZ"))
                return false;
            dialog->findChild<NumberField*>(QStringLiteral("leMultiply"))->setValue(2);
            dialog->findChild<NumberField*>(QStringLiteral("leAdd"))->setValue(0.5);
            return true;
        };
        trigger(*w, "popupImageList_recalibrateZ");
        QCOMPARE(a->z(1, 1), (1.0 + 1 + 10) * 2 + 0.5);
        QCOMPARE(b->z(0, 0), 2.0 * 2 + 0.5);

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormChooseColorGradient"))
                return false;
            dialog->findChild<QSpinBox*>(QStringLiteral("sbRepeat"))->setValue(3);
            return true;
        };
        trigger(*w, "popupImageList_selectColorGradient");
        QCOMPARE(a->colorGradient().repeat(), 3);
        QCOMPARE(b->colorGradient().repeat(), 3);

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormAdvancedAlignment"))
                return false;
            dialog->findChild<QRadioButton*>(QStringLiteral("rbRowByTop"))->setChecked(true);
            dialog->findChild<QSpinBox*>(QStringLiteral("sbSpacing"))->setValue(4);
            return true;
        };
        trigger(*w, "popupImageList_alignAdvanced");
        QCOMPARE(b->tabRect(), QRect(3 + 4, 0, 3, 3));

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormItemProperties"))
                return false;
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("leName"));
            name->setText(name->text() + QStringLiteral("!"));
            return true;
        };
        trigger(*w, "popupImageList_DisplayInfo");
        QCOMPARE(a->name(), QStringLiteral("a!"));
        QCOMPARE(b->name(), QStringLiteral("b!"));

        w->fillDialog = [](QDialog* dialog) {
            if (dialog->objectName() != QLatin1String("FormNewImage"))
                return false;
            dialog->findChild<QSpinBox*>(QStringLiteral("sbWidth"))->setValue(7);
            dialog->findChild<QSpinBox*>(QStringLiteral("sbHeight"))->setValue(5);
            return true;
        };
        trigger(*w, "actionItem_blank");
        QCOMPARE(tab->count(), 3);
        QCOMPARE(tab->items().last()->size(), QSize(7, 5));

        // Cancelled dialogs change nothing.
        w->fillDialog = nullptr;
        const QList<QSciImage*> before = tab->items();
        trigger(*w, "actionItem_blank");
        trigger(*w, "popupImageList_recalibrateZ");
        QCOMPARE(tab->items(), before);
        QCOMPARE(a->z(1, 1), 24.5);
    }
};

QTEST_MAIN(TestMainWindowFiles)
#include "tst_mainwindowfiles.moc"
