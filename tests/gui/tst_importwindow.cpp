#include "../support/scopedsettings.h"

#include <QAction>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>
#include <memory>

#include "core/display/colorgradient.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/import/fileimport.h"
#include "gui/import/formchoosechannels.h"
#include "gui/import/formrawimport.h"
#include "scriptedwindow.h"

class TestImportWindow : public QObject {
    Q_OBJECT

    std::unique_ptr<ScopedSettings> m_settings;
    QTemporaryDir m_work;

    std::unique_ptr<ScriptedWindow> window() { return shownWindowWithoutDemo<ScriptedWindow>(QSize(800, 600)); }
    static void open(ScriptedWindow& w, const QString& path)
    {
        w.files << path;
        w.findChild<QAction*>(QStringLiteral("actionOpen_items"))->trigger();
    }

private slots:
    void init() { m_settings = std::make_unique<ScopedSettings>(); }
    void cleanup() { m_settings.reset(); }

    void openFilterListsEveryFormat()
    {
        const QString filter = FileImport::openFilter(QStringLiteral("Velmora files (*.img.velm *.project.velm)"));
        const QStringList parts = filter.split(QStringLiteral(";;"));
        QVERIFY(parts.first().startsWith(QStringLiteral("All supported (")));
        for (const char* pattern :
            { "*.img.velm", "*.sxm", "*.sm4", "*.dat", "*.mul", "*.flm", "*.gwy", "*.czi", "*.png", "*.raw", "*.csv" })
            QVERIFY2(parts.first().contains(QLatin1String(pattern)), pattern);
        QCOMPARE(parts.last(), QStringLiteral("All files (*)"));
    }

    void multiChannelFileOpensTheChosenChannelsSideBySide()
    {
        const QString sxm = QStringLiteral(VELMORA_SAMPLES_DIR "/nanonis_sxm/sxm_moire_10nm.sxm");
        if (!QFile::exists(sxm))
            QSKIP("sample instrument files not available");
        auto w = window();
        QStringList offered;
        w->fillDialog = [&offered](QDialog* dialog) {
            auto* chooser = qobject_cast<FormChooseChannels*>(dialog);
            if (!chooser)
                return false;
            offered << QString::number(chooser->chosen().size());
            chooser->setChosen({ 0, 2 });
            return true;
        };
        open(*w, sxm);
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QCOMPARE(offered, QStringList { QStringLiteral("4") }); // all ticked at first
        const QList<QSciImage*> items = w->project()->currentTab()->items();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(0)->name(), QStringLiteral("sxm_moire_10nm Z forward"));
        QCOMPARE(items.at(1)->name(), QStringLiteral("sxm_moire_10nm Current forward"));
        QVERIFY(!items.at(0)->tabRect().intersects(items.at(1)->tabRect()));
        QCOMPARE(items.at(0)->top(), items.at(1)->top());

        // Cancelling the question opens nothing.
        w->fillDialog = nullptr;
        open(*w, sxm);
        QCOMPARE(w->project()->currentTab()->items().size(), 2);
    }

    void rawAndAsciiFilesAndDrops()
    {
        auto w = window();
        const QString raw = m_work.filePath(QStringLiteral("field.raw"));
        {
            QFile file(raw);
            QVERIFY(file.open(QIODevice::WriteOnly));
            const qint16 values[] = { 0x0102, 3, 4, 5, 6, 7 };
            file.write("HEAD");
            file.write(reinterpret_cast<const char*>(values), sizeof(values));
        }
        w->fillDialog = [](QDialog* dialog) {
            auto* form = qobject_cast<FormRawImport*>(dialog);
            if (!form)
                return false;
            RawImport::Options o;
            o.width = 3;
            o.height = 2;
            o.type = RawImport::DataType::Int16;
            o.littleEndian = false;
            o.headerSize = 4;
            form->setOptions(o);
            return true;
        };
        open(*w, raw);
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QSciImage* item = w->project()->currentTab()->items().value(0);
        QVERIFY(item);
        QCOMPARE(item->size(), QSize(3, 2));
        QCOMPARE(item->z(0, 1), double(0x0201)); // big endian, first stored row on top
        QCOMPARE(item->z(2, 0), double(0x0700));

        const QString csv = m_work.filePath(QStringLiteral("matrix.csv"));
        {
            QFile file(csv);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("1,2;3\n4 5\t6\n");
        }
        Options::setString(QStringLiteral("FormChooseColorGradient.gradient"), ColorGradient::builtIn(3).toString());
        QMimeData mime;
        mime.setUrls({ QUrl::fromLocalFile(csv) });
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        // Qt delivers drops only to the target of a running drag; hand it to the window directly.
        QVERIFY(w->acceptDrops());
        static_cast<QObject*>(w.get())->event(&drop);
        QVERIFY2(w->messages.isEmpty(), qPrintable(w->messages.join(QLatin1Char('\n'))));
        QCOMPARE(w->project()->currentTab()->items().size(), 2);
        QSciImage* ascii = w->project()->currentTab()->items().at(1);
        QCOMPARE(ascii->size(), QSize(3, 2));
        QCOMPARE(ascii->z(2, 1), 3.0);
        QCOMPARE(ascii->z(0, 0), 4.0);
        // ASCII data take the gradient chosen last.
        QVERIFY(ColorGradient().toString() != ColorGradient::builtIn(3).toString());
        QCOMPARE(ascii->colorGradient().toString(), ColorGradient::builtIn(3).toString());
    }
};

QTEST_MAIN(TestImportWindow)
#include "tst_importwindow.moc"
