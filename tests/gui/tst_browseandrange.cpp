#include "../support/scopedsettings.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/display/formcolorrange.h"
#include "gui/import/formbrowse.h"
#include "scriptedwindow.h"

namespace {

void writeItem(const QString& path, int width, int height)
{
    QSciImage item(width, height, Qt::white);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            item.setZ(x, y, x * y);
    QVERIFY(ItemFile::save(item, path));
}

QAction* entry(const MainWindow& window, const char* name)
{
    return window.findChild<QAction*>(QLatin1String(name));
}

} // namespace

class TestBrowseAndRange : public QObject {
    Q_OBJECT

    std::unique_ptr<ScopedSettings> m_settings;

private slots:
    void init() { m_settings = std::make_unique<ScopedSettings>(); }
    void cleanup() { m_settings.reset(); }

    void browserShowsFiltersAndOpensOntoTheCurrentTab()
    {
        QTemporaryDir folder;
        writeItem(folder.filePath(QStringLiteral("alpha.img.velm")), 30, 20);
        writeItem(folder.filePath(QStringLiteral("beta 1.img.velm")), 8, 8);
        writeItem(folder.filePath(QStringLiteral("beta 2.img.velm")), 9, 9);
        QFile other(folder.filePath(QStringLiteral("notes.docx")));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.close();

        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 600));
        entry(*window, "actionBrowse")->trigger();
        auto* browser = window->findChild<FormBrowse*>();
        QVERIFY(browser && browser->isVisible());
        browser->setFolder(folder.path());
        QCOMPARE(browser->fileCount(), 3);
        QTRY_COMPARE(browser->readyCount(), 3);
        auto* list = browser->findChild<QListWidget*>(QStringLiteral("fileList"));
        QVERIFY2(list->item(0)->text().contains(QStringLiteral("30 x 20")), qPrintable(list->item(0)->text()));

        browser->findChild<QLineEdit*>(QStringLiteral("nameFilter"))->setText(QStringLiteral("BETA"));
        QCOMPARE(browser->shownPaths().size(), 2);
        browser->findChild<QLineEdit*>(QStringLiteral("nameFilter"))->setText(QStringLiteral("*1.img*"));
        QCOMPARE(browser->shownPaths(), QStringList { folder.filePath(QStringLiteral("beta 1.img.velm")) });
        browser->findChild<QLineEdit*>(QStringLiteral("nameFilter"))->clear();
        auto* format = browser->findChild<QComboBox*>(QStringLiteral("formatFilter"));
        format->setCurrentIndex(format->count() - 1); // a format none of these files has
        QCOMPARE(browser->shownPaths(), QStringList());
        format->setCurrentIndex(0);
        QCOMPARE(browser->shownPaths().size(), 3);

        CollectionTab* tab = window->project()->currentTab();
        const int before = tab ? tab->count() : 0;
        list->item(1)->setSelected(true);
        list->item(2)->setSelected(true);
        browser->findChild<QPushButton*>(QStringLiteral("openButton"))->click();
        emit list->itemDoubleClicked(list->item(0));
        tab = window->project()->currentTab();
        QVERIFY(tab);
        QCOMPARE(tab->count(), before + 3);
        QCOMPARE(window->messages, QStringList());

        // Opened again later, the browser starts in the folder it showed last.
        FormBrowse again(nullptr, m_settings->filePath(QStringLiteral("thumbnails")));
        again.show();
        QCOMPARE(again.folder(), QFileInfo(folder.path()).absoluteFilePath());
        QTRY_COMPARE(again.readyCount(), 3);
    }

    void colorRangeDialogAppliesToAllSelectedItems()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 600));
        CollectionTab* tab
            = window->project()->currentTab() ? window->project()->currentTab() : window->project()->addTab();
        QList<QSciImage*> items;
        for (int i = 0; i < 2; ++i) {
            auto* item = new QSciImage(4, 3, Qt::white);
            item->setName(QStringLiteral("series %1").arg(i));
            item->setSciValues({ 0, 0, 4, 3, QStringLiteral("m"), QStringLiteral("m"), QStringLiteral("m"), 1, 1 });
            tab->addItem(item);
            items.append(item);
        }
        auto* list = window->findChild<QListWidget*>(QStringLiteral("imageListWidget"));
        for (int i = 0; i < list->count(); ++i)
            list->item(i)->setSelected(true);
        QCOMPARE(window->selectedItems().size(), 2);
        window->fillDialog = [](QDialog* dialog) {
            auto* form = qobject_cast<FormColorRange*>(dialog);
            if (!form)
                return false;
            form->findChild<QRadioButton*>(QStringLiteral("rbFixedRange"))->setChecked(true);
            form->findChild<QLineEdit*>(QStringLiteral("leZMinimum"))->setText(QStringLiteral("-2 nm"));
            auto* maximum = form->findChild<QLineEdit*>(QStringLiteral("leZMaximum"));
            maximum->setText(QStringLiteral("3 apples"));
            if (form->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled())
                return false; // a text that does not read must not be taken
            maximum->setText(QStringLiteral("0.5 µm"));
            return true;
        };
        entry(*window, "popupImageList_selectColorRange")->trigger();
        for (const QSciImage* item : items) {
            QCOMPARE(item->colorRange().mode, ColorRange::Mode::Fixed);
            QCOMPARE(item->colorRange().minimum, -2e-9);
            QCOMPARE(item->colorRange().maximum, 0.5e-6);
            QVERIFY(item->drawZInSciPaint());
        }
        entry(*window, "actionUndo")->trigger();
        QCOMPARE(items.first()->colorRange().mode, ColorRange::Mode::Full);
    }
};

QTEST_MAIN(TestBrowseAndRange)
#include "tst_browseandrange.moc"
