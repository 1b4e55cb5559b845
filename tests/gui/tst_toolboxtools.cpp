#include "../support/scopedsettings.h"
#include "scriptedwindow.h"
#include "toolbench.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>
#include <cmath>

#include "core/items/latexcodes.h"
#include "gui/tools/latexrenderer.h"
#include "gui/tools/qtoolalignbypoi.h"
#include "gui/tools/qtoollatextext.h"
#include "gui/tools/qtoollattice.h"
#include "gui/tools/qtoolresolvedoubletip.h"
#include "gui/tools/qtoolselection.h"

namespace {

int undoSteps()
{
    return QSciHistoryManager::instance()->undoNames().size();
}

/** Round bumps on flat ground plus their ghost @p ghost points away (display terms) at @p ratio of their height. */
double bumps(int x, int row)
{
    const auto bump = [](double dx, double dy, double r) { return std::exp(-(dx * dx + dy * dy) / (2 * r * r)); };
    return 10 * bump(x - 12, row - 14, 2.5) + 6 * bump(x - 28, row - 8, 3);
}

} // namespace

class TestToolboxTools : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;

private slots:
    void init()
    {
        m_settings = std::make_unique<ScopedSettings>();
        QVERIFY(m_settings->isValid());
    }

    void cleanup() { m_settings.reset(); }

    void shiftAddsAndCtrlSubtractsWhateverThePanelSays()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        auto* tool = qobject_cast<QToolSelection*>(bench.use("RECTANGLE_SELECTION"));
        bench.drag(QPoint(0, 0), QPoint(2, 1));
        bench.drag(QPoint(5, 3), QPoint(6, 4), Qt::ShiftModifier);
        QCOMPARE(shownMask(*bench.item), QStringLiteral("###...../###...../......../.....##./.....##."));
        bench.drag(QPoint(1, 0), QPoint(5, 3), Qt::ControlModifier);
        QCOMPARE(shownMask(*bench.item), QStringLiteral("#......./#......./......../......#./.....##."));
        QCOMPARE(tool->mode(), MaskEdit::Mode::New);
        // Without a key the panel's mode holds again: a new selection.
        bench.drag(QPoint(7, 0), QPoint(7, 0));
        QCOMPARE(shownMask(*bench.item), QStringLiteral(".......#/......../......../......../........"));

        // The same keys for a tool of one click: on the flat item the wand's region is all of it.
        bench.use("MAGICWAND_SELECTION");
        mouse(bench.page.get(), bench.item, QEvent::MouseButtonPress, QPoint(0, 4), Qt::LeftButton, Qt::LeftButton,
            Qt::ControlModifier);
        bench.release(QPoint(0, 4));
        QCOMPARE(bench.item->maskSelectedCount(), qsizetype(0));
    }

    void pathShapesPaintInOneStep_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVector<QPoint>>("clicks");
        QTest::addColumn<QPoint>("inside");
        QTest::addColumn<QPoint>("outside");
        // A filled triangle along a drag, closed back to its start.
        QTest::newRow("freehand shape") << QStringLiteral("FREEHAND_SHAPE") << QStringLiteral("Draw freehand shape")
                                        << QVector<QPoint> {} << QPoint(5, 2) << QPoint(1, 3);
        // Corners by clicks; the click on the first corner closes the polygon.
        QTest::newRow("freehand lines") << QStringLiteral("FREEHAND_LINES") << QStringLiteral("Draw freehand lines")
                                        << QVector<QPoint> { QPoint(0, 0), QPoint(7, 0), QPoint(7, 4), QPoint(0, 0) }
                                        << QPoint(5, 2) << QPoint(1, 3);
        // Points by clicks; a click on the last point again ends the curve, drawn through every point.
        QTest::newRow("curve") << QStringLiteral("LINE_CURVE") << QStringLiteral("Draw curve")
                               << QVector<QPoint> { QPoint(0, 4), QPoint(4, 0), QPoint(7, 4), QPoint(7, 4) }
                               << QPoint(4, 0) << QPoint(4, 3);
    }

    void pathShapesPaintInOneStep()
    {
        QFETCH(QString, tool);
        QFETCH(QVector<QPoint>, clicks);
        QFETCH(QPoint, inside);
        QFETCH(QPoint, outside);
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QTool* active = bench.use(tool.toLatin1().constData());
        active->setLeftColor(Qt::red);
        if (auto* style = active->findChild<QComboBox*>(QStringLiteral("cbShapeStyle")))
            style->setCurrentIndex(1);
        child<QSpinBox>(active, "sbLineWidth")->setValue(3);
        const QImage before = bench.item->picture();
        if (clicks.isEmpty()) {
            bench.press(QPoint(0, 0));
            for (const QPoint p : { QPoint(7, 0), QPoint(7, 4) })
                bench.move(p);
            bench.release(QPoint(7, 4));
        } else {
            for (int i = 0; i < clicks.size(); ++i) {
                bench.click(clicks.at(i));
                if (i + 1 < clicks.size()) {
                    QCOMPARE(bench.item->picture(), before); // previewed only, until the path ends
                    QVERIFY(active->isDragActive());
                }
            }
        }
        QVERIFY(!active->isDragActive());
        QCOMPARE(bench.item->picture().pixelColor(inside), QColor(Qt::red));
        QCOMPARE(bench.item->picture().pixelColor(outside), QColor(Qt::white));
        QTEST(lastUndoName(), "name");
        QCOMPARE(undoSteps(), 1);
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->picture(), before);
    }

    void colorizeTintsThePictureUnderTheStroke()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        bench.item->pictureRef().fill(QColor(100, 100, 100));
        QTool* tool = bench.use("COLORIZE");
        child<QSpinBox>(tool, "sbBrushRadius")->setValue(1);
        tool->setRightColor(QColor(0, 0, 255));
        ::drag(bench.page.get(), bench.item, QPoint(1, 2), QPoint(5, 2), Qt::RightButton);
        // Blue at the grey's own lightness, under the stroke and its radius only.
        const QColor tinted = bench.item->picture().pixelColor(3, 1);
        QCOMPARE(tinted.hslHue(), 240);
        QVERIFY(std::abs(tinted.lightness() - 100) <= 1);
        QCOMPARE(bench.item->picture().pixelColor(3, 4), QColor(100, 100, 100));
        QCOMPARE(bench.item->picture().pixelColor(7, 2), QColor(100, 100, 100));
        QCOMPARE(lastUndoName(), QStringLiteral("Colorize"));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->picture().pixelColor(3, 1), QColor(100, 100, 100));
    }

    void smoothenFlattensASpikeUnderTheBrushOnly()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        // Two spikes: one under the stroke, one beside it. The item shows its picture.
        bench.item->setZ(2, 2, 9);
        bench.item->setZ(7, 2, 9);
        const QImage picture = bench.item->picture();
        QTool* tool = bench.use("SMOOTHEN");
        child<QSpinBox>(tool, "sbBrushRadius")->setValue(1);
        child<QDoubleSpinBox>(tool, "dsbSmoothingRadius")->setValue(1);
        bench.drag(QPoint(1, 2), QPoint(3, 2));
        QCOMPARE(bench.item->z(2, 2), 9.0 / 5); // the mean over the disc of radius 1: five points
        QCOMPARE(bench.item->z(2, 1), 9.0 / 5);
        QCOMPARE(bench.item->z(7, 2), 9.0);
        QVERIFY(bench.item->picture() != picture); // re-rendered from the new heights
        QCOMPARE(lastUndoName(), QStringLiteral("Smoothen"));
        QCOMPARE(undoSteps(), 1);
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->z(2, 2), 9.0);
        QCOMPARE(bench.item->picture(), picture);
    }

    void doubleTipIsPreviewedThenRemovedInOneStep()
    {
        Bench bench;
        auto* item = new QSciImage(40, 24, Qt::white);
        item->setName(QStringLiteral("tip"));
        item->setPosition(20, 0);
        bench.tab->addItem(item);
        bench.item = item;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        const QPoint ghost(6, 3); // display terms: right and down
        const double ratio = 0.5;
        for (int x = 0; x < 40; ++x)
            for (int row = 0; row < 24; ++row) {
                const int sx = x - ghost.x(), srow = row - ghost.y();
                const bool inside = sx >= 0 && srow >= 0 && sx < 40 && srow < 24;
                item->setZ(x, 23 - row, bumps(x, row) + (inside ? ratio * bumps(sx, srow) : 0));
            }
        const QVector<double> doubled = item->zMatrix();
        auto* tool = qobject_cast<QToolResolveDoubleTip*>(bench.use("RESOLVE_DOUBLE_TIP"));
        bench.click(QPoint(12, 14));
        QVERIFY(!tool->hasPreview());
        bench.click(QPoint(19, 16)); // a point beside the ghost's apex
        QVERIFY(tool->hasPreview());
        QTRY_VERIFY(bench.overlay() && bench.overlay()->isVisible());
        QCOMPARE(item->zMatrix(), doubled); // a preview only
        QCOMPARE(undoSteps(), 0);

        const QString said = child<QLabel>(tool, "lbDoubleTipStatus")->text();
        child<QPushButton>(tool, "pbApplyDoubleTip")->click();
        double worst = 0;
        for (int x = 0; x < 40; ++x)
            for (int row = 0; row < 24; ++row)
                worst = std::max(worst, std::abs(item->z(x, 23 - row) - bumps(x, row)));
        QVERIFY2(worst < 0.05 * 10, qPrintable(QString::number(worst) + said));
        QVERIFY(!tool->hasPreview());
        QCOMPARE(lastUndoName(), QStringLiteral("Resolve double tip"));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.tab->items().last()->zMatrix(), doubled);
    }

    void alignByPoiMovesTheOtherItemsOntoTheFirstMark()
    {
        Bench bench;
        auto* second = new QSciImage(6, 6, Qt::white);
        second->setName(QStringLiteral("second"));
        second->setPosition(20, 10);
        bench.tab->addItem(second);
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QSignalSpy output(bench.box.get(), &ToolBox::outputRequested);
        auto* tool = qobject_cast<QToolAlignByPoi*>(bench.use("ALIGN_BY_POI"));
        bench.click(QPoint(2, 1)); // the probe at (5, 3): tab point (7, 4)
        ::drag(bench.page.get(), second, QPoint(0, 0), QPoint(4, 5)); // the mark goes where the drag ends
        QCOMPARE(tool->markCount(), 2);
        child<QPushButton>(tool, "pbAlignByPoi")->click();
        QCOMPARE(second->tabRect().topLeft(), QPoint(7 - 4, 4 - 5));
        QCOMPARE(bench.item->tabRect().topLeft(), QPoint(5, 3));
        QCOMPARE(lastUndoName(), QStringLiteral("Align by point of interest"));
        QCOMPARE(undoSteps(), 1);
        QVERIFY(
            output.count() == 1 && output.first().first().toString().contains(QStringLiteral("second by (-17, -11)")));
        QCOMPARE(tool->markCount(), 0);
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.tab->items().last()->tabRect().topLeft(), QPoint(20, 10));
    }

    void latticeShowsItsGridAndReportsInPhysicalUnits()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QSciImage::SciValues sci = bench.item->sciValues();
        sci.xUnitPerPixel = sci.yUnitPerPixel = 0.5;
        sci.xUnit = sci.yUnit = QStringLiteral("nm");
        bench.item->setSciValues(sci);
        QSignalSpy output(bench.box.get(), &ToolBox::outputRequested);
        QSignalSpy status(bench.box.get(), &ToolBox::statusMessageRequested);
        auto* tool = qobject_cast<QToolLattice*>(bench.use("LATTICE"));
        bench.drag(QPoint(1, 4), QPoint(5, 4));
        QCOMPARE(tool->vectorCount(), 1);
        QCOMPARE(output.count(), 0);
        bench.drag(QPoint(6, 3), QPoint(6, 0));
        QCOMPARE(tool->vectorCount(), 2);
        QCOMPARE(tool->result().lengthA, 2.0);
        QCOMPARE(tool->result().lengthB, 1.5);
        QCOMPARE(tool->result().angle, 90.0);
        QCOMPARE(output.count(), 1);
        QVERIFY(status.count() >= 1);
        QVERIFY2(status.last().first().toString().contains(QStringLiteral("|a| = 2 nm, |b| = 1.5 nm, angle 90.00")),
            qPrintable(status.last().first().toString()));
        // The grid stays over the item after the release: a line through the origin along b, one step of a on.
        QVERIFY(bench.overlay() && bench.overlay()->isVisible());
        QVERIFY(qAlpha(tool->currentOverlay().pixel(5, 0)) > 0);
        QCOMPARE(undoSteps(), 0);
        // Another tool takes the grid away.
        bench.use("RECTANGLE_SELECTION");
        QVERIFY(!bench.overlay()->isVisible());
    }

    void panelsKeepTheirSettingsAcrossARestart()
    {
        {
            Bench bench;
            child<QSpinBox>(bench.use("COLORIZE"), "sbStrength")->setValue(40);
            child<QSpinBox>(bench.use("SMOOTHEN"), "sbBrushRadius")->setValue(9);
            child<QComboBox>(bench.use("FREEHAND_SHAPE"), "cbShapeStyle")->setCurrentIndex(1);
            child<QSpinBox>(bench.use("LINE_CURVE"), "sbLineWidth")->setValue(5);
            QTool* tip = bench.use("RESOLVE_DOUBLE_TIP");
            child<QCheckBox>(tip, "cbAutoRatio")->setChecked(false);
            child<QDoubleSpinBox>(tip, "dsbGhostRatio")->setValue(0.25);
            child<QLineEdit>(bench.use("LATEX_TEXT"), "leFormula")->setText(QStringLiteral("\\alpha"));
        }
        Options::shutdown();

        Bench bench;
        QCOMPARE(child<QSpinBox>(bench.use("COLORIZE"), "sbStrength")->value(), 40);
        QCOMPARE(child<QSpinBox>(bench.use("SMOOTHEN"), "sbBrushRadius")->value(), 9);
        QCOMPARE(child<QSpinBox>(bench.use("COLORIZE"), "sbBrushRadius")->value(), 4); // panels are separate
        QCOMPARE(child<QComboBox>(bench.use("FREEHAND_SHAPE"), "cbShapeStyle")->currentIndex(), 1);
        QCOMPARE(child<QSpinBox>(bench.use("LINE_CURVE"), "sbLineWidth")->value(), 5);
        QTool* tip = bench.use("RESOLVE_DOUBLE_TIP");
        QVERIFY(!child<QCheckBox>(tip, "cbAutoRatio")->isChecked());
        QCOMPARE(child<QDoubleSpinBox>(tip, "dsbGhostRatio")->value(), 0.25);
        QCOMPARE(qobject_cast<QToolLatexText*>(bench.use("LATEX_TEXT"))->formula(), QStringLiteral("\\alpha"));
    }

    void latexFormulaIsRenderedAndPlacedWithItsSource()
    {
        if (!LatexRenderer::isAvailable())
            QSKIP("MathJax (libjs-mathjax) is not installed");
        Bench bench;
        auto* item = new QSciImage(200, 80, Qt::white);
        item->setName(QStringLiteral("formula"));
        item->setPosition(20, 0);
        bench.tab->addItem(item);
        bench.item = item;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        auto* tool = qobject_cast<QToolLatexText*>(bench.use("LATEX_TEXT"));
        tool->setLeftColor(Qt::black);
        QSignalSpy finished(tool, &QToolLatexText::renderingFinished);
        tool->setFormula(QStringLiteral("\\frac{a}{b}"));
        tool->renderNow();
        QVERIFY(finished.wait(30000) || finished.count() > 0);
        if (!finished.last().first().toBool())
            QSKIP(qPrintable(
                QStringLiteral("MathJax did not render here: ") + child<QLabel>(tool, "lbFormulaStatus")->text()));
        const QImage formula = tool->renderedImage();
        QVERIFY(formula.width() > 4 && formula.height() > 10); // a fraction is taller than wide letters

        const QImage before = item->picture();
        bench.drag(QPoint(10, 10), QPoint(30, 20));
        QCOMPARE(lastUndoName(), QStringLiteral("LaTeX text"));
        QCOMPARE(item->textLines(), QStringList { QStringLiteral("$\\frac{a}{b}$") });
        // Dark ink inside the placed rectangle only.
        int inside = 0, outside = 0;
        for (int y = 0; y < item->height(); ++y)
            for (int x = 0; x < item->width(); ++x)
                if (qGray(item->picture().pixel(x, y)) < 128)
                    ++(QRect(QPoint(30, 20), formula.size()).contains(x, y) ? inside : outside);
        QVERIFY(inside > 5);
        QCOMPARE(outside, 0);
        QVERIFY(LatexCodes::document(*item).contains(QStringLiteral("\\[ \\frac{a}{b} \\]")));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.tab->items().last()->picture(), before);
        QVERIFY(bench.tab->items().last()->textLines().isEmpty());

        // A formula that is not valid LaTeX says so and places nothing.
        tool->setFormula(QStringLiteral("\\frac{a"));
        tool->renderNow();
        QVERIFY(finished.wait(30000));
        QVERIFY(!finished.last().first().toBool());
        QVERIFY(tool->renderedImage().isNull());
    }

    void latexCodesExportWritesEachItemsTexts()
    {
        QTemporaryDir folder;
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(800, 600));
        auto* item = new QSciImage(4, 4, Qt::white);
        item->setName(QStringLiteral("formulas"));
        item->setTextLines({ QStringLiteral("$\\alpha$"), QStringLiteral("50% done") });
        window->project()->currentTab()->addItem(item);
        item->setSelected(true);
        window->files << folder.path();
        auto* action = window->findChild<QAction*>(QStringLiteral("actionLaTeX_Codes"));
        QTRY_VERIFY(action && action->isEnabled());
        action->trigger();
        QVERIFY2(window->messages.isEmpty(), qPrintable(window->messages.join(QLatin1Char('\n'))));
        QFile tex(QDir(folder.path()).filePath(QStringLiteral("formulas.tex")));
        QVERIFY(tex.open(QIODevice::ReadOnly));
        QCOMPARE(tex.readAll(), QByteArray("% formulas\n\\[ \\alpha \\]\n50\\% done\n\n"));
    }
};

QTEST_MAIN(TestToolboxTools)
#include "tst_toolboxtools.moc"
