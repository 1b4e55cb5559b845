#include "scriptedwindow.h"

#include "../support/scopedsettings.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>
#include "gui/plots/formplot.h"
#include "gui/tables/tablespanel.h"
#include "core/tables/qscisimpletablemodel.h"
#include <QtTest>

#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/processing/qscidenoise.h"
#include "core/processing/qsciderivative.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/processing/effectpanel.h"
#include "gui/processing/effectpreview.h"
#include "gui/processing/formimageprocessing.h"

namespace {

QSciImage* addSelectedItem(MainWindow& window, int w, int h)
{
    auto* item = new QSciImage(w, h, Qt::white);
    item->setName(QStringLiteral("scan"));
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            item->setZ(x, y, 0.5 * x + ((x * 7 + y * 13) % 11));
    window.project()->currentTab()->addItem(item);
    item->setSelected(true);
    return item;
}

QVector<double> expected(const QSciEffect& effect, const QSciImage& item)
{
    QVector<double> out = item.zMatrix();
    const EffectInput input { item.zData(), item.maskData(), item.width(), item.height() };
    if (!effect.run(input, out.data(), nullptr))
        qFatal("effect stopped without a sink");
    return out;
}

} // namespace

class TestFormImageProcessing : public QObject {
    Q_OBJECT

private slots:
    void init() { m_settings = std::make_unique<ScopedSettings>(); }
    void cleanup()
    {
        m_window.reset();
        m_settings.reset();
    }

    void previewFollowsOptionsAndApplyIsOneUndoStep()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 60, 40);
        const QVector<double> before = item->zMatrix();

        m_window->findChild<QAction*>(QStringLiteral("actionDerivative"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        QVERIFY(form->isVisible());
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("DerivativePanel"));
        auto* result = form->findChild<QLabel*>(QStringLiteral("lbPreviewResult"));
        QTRY_VERIFY(!form->preview()->isBusy() && !result->pixmap(Qt::ReturnByValue).isNull());
        const QImage first = result->pixmap(Qt::ReturnByValue).toImage();

        form->findChild<QSpinBox*>(QStringLiteral("sbAddSubstractOrigin"))->setValue(3);
        QTRY_VERIFY(!form->preview()->isBusy() && result->pixmap(Qt::ReturnByValue).toImage() != first);

        const auto& effect = static_cast<const QSciDerivative&>(form->currentPanel()->effect());
        QCOMPARE(effect.options().originFactor, 3);
        const QVector<double> wanted = expected(effect, *item);
        form->findChild<QPushButton*>(QStringLiteral("pbApply"))->click();
        QCOMPARE(item->zMatrix(), wanted);
        QCOMPARE(QSciHistoryManager::instance()->undoNames().value(0), QStringLiteral("Derivative"));
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), 1);
        // The options outlive the dialog.
        QCOMPARE(Options::getInt(QStringLiteral("Derivative.addSubstractOrigin"), 0), 3);

        m_window->findChild<QAction*>(QStringLiteral("actionUndo"))->trigger();
        QSciImage* restored = m_window->project()->currentTab()->items().value(0);
        QCOMPARE(restored->zMatrix(), before);
    }

    void refusedEffectLeavesTheItemAlone()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 20, 8);
        const QVector<double> before = item->zMatrix();
        m_window->findChild<QAction*>(QStringLiteral("actionDenoise"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("DenoisePanel"));
        form->findChild<QRadioButton*>(QStringLiteral("rbSelection"))->setChecked(true);
        auto* message = form->findChild<QLabel*>(QStringLiteral("lbPreviewMessage"));
        QTRY_COMPARE(message->text(), QSciEffect::nothingSelectedText());

        form->findChild<QPushButton*>(QStringLiteral("pbApply"))->click();
        QCOMPARE(m_window->messages, QStringList { QSciEffect::nothingSelectedText() });
        form->hide();
        auto* entry = m_window->findChild<QAction*>(QStringLiteral("popupImageList_imageProcessing"));
        QVERIFY(entry->isEnabled());
        entry->trigger();
        QVERIFY(form->isVisible());
        QCOMPARE(item->zMatrix(), before);
        QVERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());
    }

    void stopDiscardsTheRun()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 900, 900);
        const QVector<double> before = item->zMatrix();
        m_window->findChild<QAction*>(QStringLiteral("actionDenoise"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        form->findChild<QDoubleSpinBox*>(QStringLiteral("dsbRadius"))->setValue(6);
        // The first look at the event loop during the run presses Stop.
        QTimer::singleShot(0, form->findChild<QPushButton*>(QStringLiteral("pbStop")), &QPushButton::click);
        form->apply();
        QVERIFY(!form->isRunning());
        QCOMPARE(item->zMatrix(), before);
        QVERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());
    }

    void threePointsArePickedOnThePreview()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 50, 30);
        m_window->findChild<QAction*>(QStringLiteral("actionPlane_correction"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("PlaneCorrectionPanel"));
        form->findChild<QComboBox*>(QStringLiteral("cbLevellingMethod"))->setCurrentIndex(2);
        auto* original = form->findChild<QLabel*>(QStringLiteral("lbPreviewOriginal"));
        QTRY_VERIFY(!original->pixmap(Qt::ReturnByValue).isNull());
        // The 50 x 30 item sits in the middle of the label; picture rows run from the top.
        const QPoint corner((original->width() - 50) / 2, (original->height() - 30) / 2);
        const QPoint picks[] = { QPoint(3, 25), QPoint(45, 20), QPoint(10, 2) };
        for (const QPoint& pick : picks)
            QTest::mouseClick(original, Qt::LeftButton, Qt::NoModifier, corner + pick);
        QCOMPARE(form->findChild<QSpinBox*>(QStringLiteral("sbPoint2x"))->value(), 45);
        QCOMPARE(form->findChild<QSpinBox*>(QStringLiteral("sbPoint2y"))->value(), 30 - 1 - 20);

        form->findChild<QPushButton*>(QStringLiteral("pbApply"))->click();
        QCOMPARE(QSciHistoryManager::instance()->undoNames().value(0), QStringLiteral("Three-point levelling"));
        const double first = item->z(3, 30 - 1 - 25);
        for (const QPoint& pick : picks)
            QVERIFY(std::abs(item->z(pick.x(), 30 - 1 - pick.y()) - first) < 1e-9);
    }

    void effectsMenuOpensItsFilter()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 30, 20);
        m_window->findChild<QAction*>(QStringLiteral("actionSobel_Edge_Detect"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("FilterPanel"));
        const QVector<double> wanted = expected(form->currentPanel()->effect(), *item);
        form->findChild<QPushButton*>(QStringLiteral("pbApply"))->click();
        QCOMPARE(QSciHistoryManager::instance()->undoNames().value(0), QStringLiteral("Edge detection"));
        QCOMPARE(item->zMatrix(), wanted);
        m_window->findChild<QAction*>(QStringLiteral("actionZ_Matrix_manipulation"))->trigger();
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("ZFormulaPanel"));
    }

    void spectrumAndRoughnessFromTheMenu()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
        QSciImage* item = addSelectedItem(*m_window, 32, 24);
        m_window->fillDialog
            = [](QDialog* dialog) { return dialog->objectName() == QLatin1String("FormFourierTransform"); };
        m_window->findChild<QAction*>(QStringLiteral("actionFourier_transformation"))->trigger();
        const QList<QSciImage*> items = m_window->project()->currentTab()->items();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(1)->size(), item->size());
        QVERIFY(items.at(1)->left() > item->right());
        QCOMPARE(QSciHistoryManager::instance()->undoNames(), QStringList { QStringLiteral("Fourier transformation") });

        // Item and spectrum selected, frequencies marked on the spectrum: the dialog offers the filter first.
        items.at(1)->setPixelSelected(16, 12, true);
        item->setSelected(true);
        items.at(1)->setSelected(true);
        const QVector<double> before = item->zMatrix();
        bool offered = false;
        m_window->fillDialog = [&offered](QDialog* dialog) {
            offered = dialog->findChild<QRadioButton*>(QStringLiteral("rbFilter"))->isChecked();
            return true;
        };
        m_window->findChild<QAction*>(QStringLiteral("actionFourier_transformation"))->trigger();
        QVERIFY(offered);
        QCOMPARE(QSciHistoryManager::instance()->undoNames().last(), QStringLiteral("Fourier filter"));
        QVERIFY(item->zMatrix() != before);
        // Only the zero frequency kept: the mean everywhere.
        QVERIFY(qAbs(item->z(0, 0) - item->z(20, 10)) < 1e-9);
        m_window->findChild<QAction*>(QStringLiteral("actionUndo"))->trigger();
        item = m_window->project()->currentTab()->items().value(0);
        QCOMPARE(item->zMatrix(), before);
        m_window->project()->currentTab()->items().value(1)->setSelected(false);

        item->setSelected(true);
        items.at(1)->setSelected(false);
        m_window->findChild<QAction*>(QStringLiteral("actionRoughness_analysis"))->trigger();
        auto* table = m_window->findChild<QTableWidget*>(QStringLiteral("twRoughness"));
        QTRY_VERIFY(table->isVisible());
        QCOMPARE(table->item(0, 0)->text(), QStringLiteral("Sa"));
        QVERIFY(table->item(0, 1)->text().toDouble() > 0);

        // The radial curves open as plot windows; the parameters go to a table of their own.
        m_window->findChild<QPushButton*>(QStringLiteral("pbPsdPlot"))->click();
        const QList<FormPlot*> plots = m_window->findChildren<FormPlot*>();
        QCOMPARE(plots.size(), 1);
        QVERIFY(plots.first()->document().curves.first().pointCount() > 5);
        const int tables = m_window->tablesPanel()->allTables().size();
        m_window->findChild<QPushButton*>(QStringLiteral("pbRoughnessTable"))->click();
        QCOMPARE(m_window->tablesPanel()->allTables().size(), tables + 1);
        QCOMPARE(m_window->tablesPanel()->allTables().last().second->cellText(1, 0), QStringLiteral("Sa"));
    }

private:
    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<ScriptedWindow> m_window;
};

QTEST_MAIN(TestFormImageProcessing)
#include "tst_formimageprocessing.moc"
