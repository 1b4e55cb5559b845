#include "../support/scopedsettings.h"
#include "toolbench.h"
#include <memory>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGraphicsScene>
#include <QLabel>
#include <QCheckBox>
#include <QMenu>
#include <QMouseEvent>
#include <QStatusBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTextEdit>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include "core/history/historylog.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/settings/options.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/collectiontabview.h"
#include "gui/app/imagegraphicsitem.h"
#include "gui/app/mainwindow.h"
#include "gui/app/toolsdock.h"
#include "gui/tools/qtool.h"
#include "gui/tools/qtoolmagicwandselection.h"
#include "gui/tools/qtoolselection.h"
#include "gui/tools/toolbox.h"
#include "gui/tools/tooloverlayitem.h"

class TestTools : public QObject {
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

    void toolListHasTheFourHeadings()
    {
        Bench bench;
        QTreeWidget* list = bench.dock.toolList();
        QStringList headings;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            headings << list->topLevelItem(i)->text(0);
        QCOMPARE(headings,
            (QStringList { QStringLiteral("Select"), QStringLiteral("Scientific"), QStringLiteral("Draw"),
                QStringLiteral("Shapes") }));
        QCOMPARE(bench.box->currentTool()->identifier(), QStringLiteral("DEF_CURSOR"));
        // Choosing an entry of the list makes its tool current and shows its panel only.
        QTreeWidgetItem* wand = list->topLevelItem(0)->child(5);
        list->setCurrentItem(wand);
        QCOMPARE(bench.box->currentTool()->identifier(), QStringLiteral("MAGICWAND_SELECTION"));
        QVERIFY(!bench.box->tool(QStringLiteral("DEF_CURSOR"))->isVisibleTo(bench.dock.optionArea()));
        QVERIFY(bench.box->currentTool()->isVisibleTo(bench.dock.optionArea()));
    }

    void rectangleDragSelectsExactlyTheDraggedPoints_data()
    {
        QTest::addColumn<int>("zoom");
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QString>("expected");
        QTest::newRow("300 %") << 300 << QPoint(1, 1) << QPoint(4, 2)
                               << QStringLiteral("......../.####.../.####.../......../........");
        QTest::newRow("200 %, backwards")
            << 200 << QPoint(6, 4) << QPoint(5, 3) << QStringLiteral("......../......../......../.....##./.....##.");
        QTest::newRow("beyond the item") << 300 << QPoint(6, 1) << QPoint(12, -4)
                                         << QStringLiteral("......##/......##/......../......../........");
    }

    void rectangleDragSelectsExactlyTheDraggedPoints()
    {
        QFETCH(int, zoom);
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        Bench bench;
        bench.page->setZoomPercent(zoom);
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        bench.use("RECTANGLE_SELECTION");

        bench.press(from);
        bench.move(to);
        // The rubber band shows over the item while the button is down, drawn by the redraw timer.
        QTRY_VERIFY(bench.overlay() && bench.overlay()->isVisible());
        QCOMPARE(bench.overlay()->pos(), QPointF(5, 3));
        QCOMPARE(qAlpha(bench.box->currentTool()->currentOverlay().pixel(from)), 255);
        QCOMPARE(bench.item->maskSelectedCount(), 0);
        bench.release(to);

        QTEST(shownMask(*bench.item), "expected");
        QVERIFY(!bench.overlay()->isVisible());
        QCOMPARE(lastUndoName(), QStringLiteral("Select rectangle"));
    }

    void addAndSubtractCombineWithTheMask()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        auto* tool = qobject_cast<QToolSelection*>(bench.use("RECTANGLE_SELECTION"));
        bench.drag(QPoint(0, 0), QPoint(2, 1));
        tool->setMode(MaskEdit::Mode::Add);
        bench.drag(QPoint(5, 3), QPoint(6, 4));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("###...../###...../......../.....##./.....##."));
        tool->setMode(MaskEdit::Mode::Subtract);
        bench.drag(QPoint(1, 0), QPoint(5, 3));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("#......./#......./......../......#./.....##."));

        // Each drag was one step; undo walks back through them.
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(shownMask(*bench.item), QStringLiteral("###...../###...../......../.....##./.....##."));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->maskSelectedCount(), 0);
    }

    void ellipseAndFreehandSelections()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        bench.use("ELLIPSE_SELECTION");
        bench.drag(QPoint(0, 0), QPoint(7, 4));
        QCOMPARE(lastUndoName(), QStringLiteral("Select ellipse"));
        QVERIFY(bench.item->isPixelSelected(4, 2));
        QVERIFY(!bench.item->isPixelSelected(0, 0));
        QVERIFY(!bench.item->isPixelSelected(7, 4));

        bench.use("FREEHAND_SELECTION");
        bench.press(QPoint(0, 0));
        for (const QPoint p : { QPoint(7, 0), QPoint(7, 4) })
            bench.move(p);
        bench.release(QPoint(7, 4));
        QCOMPARE(lastUndoName(), QStringLiteral("Select freehand"));
        // A triangle above the diagonal from the top-left to the bottom-right corner.
        QVERIFY(bench.item->isPixelSelected(6, 3));
        QVERIFY(!bench.item->isPixelSelected(1, 1));

        // Freehand lines: one corner per release; a release on the first corner closes it.
        bench.use("FREEHAND_LINES_SELECTION");
        bench.item->clearMask();
        bench.drag(QPoint(0, 4), QPoint(6, 4));
        bench.drag(QPoint(6, 4), QPoint(9, 0));
        QCOMPARE(bench.item->maskSelectedCount(), 0);
        // This press lies beside the item; the polygon goes on regardless.
        bench.drag(QPoint(9, 0), QPoint(0, 4));
        QCOMPARE(lastUndoName(), QStringLiteral("Select freehand lines"));
        QVERIFY(bench.item->isPixelSelected(5, 1));
        QVERIFY(bench.item->isPixelSelected(6, 2));
        QVERIFY(!bench.item->isPixelSelected(1, 3));
    }

    void magicWandSelectsByZ()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        // Shown top row first: a ridge of 10 splits two plains of 0; the range is 0..10.
        const char* rows[] = { "00100000", "00100110", "11100110", "00000000", "00100000" };
        for (int row = 0; row < 5; ++row)
            for (int x = 0; x < 8; ++x)
                bench.item->setZ(x, 4 - row, rows[row][x] == '1' ? 10.0 : 0.0);
        auto* wand = qobject_cast<QToolMagicWandSelection*>(bench.use("MAGICWAND_SELECTION"));
        wand->setTolerancePercent(10);
        bench.press(QPoint(0, 0));
        bench.release(QPoint(0, 0));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("##....../##....../......../......../........"));
        QCOMPARE(lastUndoName(), QStringLiteral("Select by magic wand"));

        wand->setContiguous(false);
        wand->setMode(MaskEdit::Mode::Add);
        bench.press(QPoint(5, 1));
        bench.release(QPoint(5, 1));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("###...../###..##./###..##./......../..#....."));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(shownMask(*bench.item), QStringLiteral("##....../##....../......../......../........"));
    }

    void moveSelectionShiftsTheMask()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        MaskEdit::applyRect(*bench.item, QRect(1, 1, 2, 2), MaskEdit::Mode::New);
        bench.use("MOVE_SELECTION");
        bench.drag(QPoint(3, 3), QPoint(6, 2));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("....##../....##../......../......../........"));
        QCOMPARE(lastUndoName(), QStringLiteral("Move selection"));
    }

    void maskCommandsRunUnderTheirOwnNames()
    {
        Bench bench;
        QTool* tool = bench.use("RECTANGLE_SELECTION");
        bench.drag(QPoint(0, 0), QPoint(0, 0));
        child<QPushButton>(tool, "pbInvertSelectionMask")->click();
        QCOMPARE(bench.item->maskSelectedCount(), 39);
        QCOMPARE(lastUndoName(), QStringLiteral("Invert selection (mask)"));
        child<QPushButton>(tool, "pbUnselectAllMask")->click();
        QCOMPARE(bench.item->maskSelectedCount(), 0);
        QCOMPARE(lastUndoName(), QStringLiteral("Unselect all (mask)"));
        child<QPushButton>(tool, "pbSelectAllMask")->click();
        QCOMPARE(bench.item->maskSelectedCount(), 40);
        QCOMPARE(lastUndoName(), QStringLiteral("Select all (mask)"));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->maskSelectedCount(), 0);
    }

    void releaseWithoutPressAppliesTheLastPoints()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QTool* tool = bench.use("RECTANGLE_SELECTION");
        bench.drag(QPoint(1, 1), QPoint(2, 3));
        const QString selected = shownMask(*bench.item);
        bench.item->clearMask();
        const int steps = QSciHistoryManager::instance()->undoNames().size();

        bench.box->toolMouseReleased(bench.page.get(), nullptr, QPoint(7, 0), Qt::LeftButton);
        QVERIFY(!tool->isDragActive());
        QCOMPARE(shownMask(*bench.item), selected);
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), steps + 1);
        QCOMPARE(lastUndoName(), QStringLiteral("Select rectangle"));
    }

    void onlyTheDefaultPointerMovesItems()
    {
        Bench bench;
        ImageGraphicsItem* graphics = bench.page->graphicsItem(bench.item);
        QVERIFY(graphics);
        QSignalSpy movable(bench.box.get(), &ToolBox::itemsMovableChanged);
        for (const QString& id : bench.box->identifiers()) {
            bench.box->setCurrentTool(id);
            const bool expected = id == QLatin1String("DEF_CURSOR");
            QCOMPARE(bool(graphics->flags() & QGraphicsItem::ItemIsMovable), expected);
            QCOMPARE(bench.box->itemsMovable(), expected);
        }
        bench.box->setCurrentTool(QStringLiteral("DEF_CURSOR"));
        QVERIFY(graphics->flags() & QGraphicsItem::ItemIsMovable);
        QVERIFY(movable.count() >= 2);

        // With the pointer the view keeps the mouse: a press reaches no tool.
        QVERIFY(!bench.box->toolMousePressed(bench.page.get(), bench.item, QPoint(1, 1), Qt::LeftButton));
    }

    void panelStateSurvivesARestart()
    {
        {
            Bench bench;
            auto* wand = qobject_cast<QToolMagicWandSelection*>(bench.use("MAGICWAND_SELECTION"));
            // A fresh store opens with the panel's own defaults.
            QCOMPARE(wand->tolerancePercent(), 5.0);
            QVERIFY(wand->isContiguous());
            QCOMPARE(wand->mode(), MaskEdit::Mode::New);
            wand->setTolerancePercent(12.5);
            wand->setContiguous(false);
            wand->setMode(MaskEdit::Mode::Subtract);
            bench.use("RECT_SHAPE");
            child<QSpinBox>(bench.box->currentTool(), "sbLineWidth")->setValue(7);
        }
        QVERIFY(!Options::getString(QStringLiteral("MAGICWAND_SELECTION_ALL_SETTINGS"), QString()).isEmpty());
        Options::shutdown();

        Bench bench;
        auto* wand = qobject_cast<QToolMagicWandSelection*>(bench.use("MAGICWAND_SELECTION"));
        QCOMPARE(wand->tolerancePercent(), 12.5);
        QVERIFY(!wand->isContiguous());
        QCOMPARE(wand->mode(), MaskEdit::Mode::Subtract);
        QCOMPARE(child<QSpinBox>(bench.use("RECT_SHAPE"), "sbLineWidth")->value(), 7);
        // Panels are separate: another selection tool keeps its own mode.
        QCOMPARE(qobject_cast<QToolSelection*>(bench.use("RECTANGLE_SELECTION"))->mode(), MaskEdit::Mode::New);
    }

    void selectionMethodFromTheCentre()
    {
        Options::setBool(QStringLiteral("Tools.selectionMethodBoundingRect"), false);
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        bench.use("RECTANGLE_SELECTION");
        bench.drag(QPoint(3, 2), QPoint(4, 3));
        QCOMPARE(shownMask(*bench.item), QStringLiteral("......../..###.../..###.../..###.../........"));
    }

    void drawingToolsPaintThePictureInOneStep_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QPoint>("probe");
        QTest::addColumn<QColor>("expected");
        const QColor left(Qt::red), right(Qt::blue);
        QTest::newRow("pencil") << QStringLiteral("PENCIL") << QStringLiteral("Pencil") << QPoint(3, 2) << left;
        QTest::newRow("paintbrush") << QStringLiteral("PAINTBRUSH") << QStringLiteral("Paintbrush") << QPoint(3, 2)
                                    << left;
        QTest::newRow("eraser") << QStringLiteral("ERASER") << QStringLiteral("Eraser") << QPoint(3, 2) << right;
        QTest::newRow("rectangle") << QStringLiteral("RECT_SHAPE") << QStringLiteral("Draw rectangle") << QPoint(1, 1)
                                   << left;
        QTest::newRow("ellipse") << QStringLiteral("ELLIPSE_SHAPE") << QStringLiteral("Draw ellipse") << QPoint(3, 2)
                                 << left;
        QTest::newRow("rounded rectangle")
            << QStringLiteral("ROUND_RECT_SHAPE") << QStringLiteral("Draw rounded rectangle") << QPoint(3, 2) << left;
        QTest::newRow("fill bucket") << QStringLiteral("FILL_BUCKET") << QStringLiteral("Fill bucket") << QPoint(7, 4)
                                     << left;
    }

    void drawingToolsPaintThePictureInOneStep()
    {
        QFETCH(QString, tool);
        QFETCH(QPoint, probe);
        QFETCH(QColor, expected);
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QTool* active = bench.use(tool.toLatin1().constData());
        active->setLeftColor(Qt::red);
        active->setRightColor(Qt::blue);
        // Shapes filled, so that the probe lies on whole points of the shape.
        if (auto* style = active->findChild<QComboBox*>(QStringLiteral("cbShapeStyle")))
            style->setCurrentIndex(1);
        const QImage before = bench.item->picture();

        bench.press(QPoint(1, 1));
        bench.move(QPoint(3, 2));
        bench.move(QPoint(5, 3));
        QTRY_VERIFY(bench.overlay() || tool == QLatin1String("FILL_BUCKET"));
        QCOMPARE(bench.item->picture(), before);
        bench.release(QPoint(5, 3));

        QCOMPARE(bench.item->picture().pixelColor(probe), expected);
        QTEST(lastUndoName(), "name");
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), 1);
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(bench.item->picture(), before);
    }

    void colourPickerSetsTheButtonsColour()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        bench.item->setPixel(2, 4 - 1, qRgba(10, 20, 30, 255));
        bench.use("PICK_COLOR");
        bench.press(QPoint(2, 1), Qt::RightButton);
        bench.release(QPoint(2, 1), Qt::RightButton);
        QCOMPARE(Options::getString(QStringLiteral("Tools.rightColor"), QString()), QStringLiteral("10;20;30;255"));
        QCOMPARE(
            Options::getString(QStringLiteral("Tools.leftColor"), QStringLiteral("unset")), QStringLiteral("unset"));
        // The next tool activated paints with it.
        QCOMPARE(bench.use("PENCIL")->rightColor(), QColor(10, 20, 30));
        QVERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());
    }

    void theWindowPassesTheTabsMouseToItsTools()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* item = new QSciImage(20, 10, Qt::white);
        item->setName(QStringLiteral("probe"));
        item->setPosition(3, 2);
        window.project()->currentTab()->addItem(item);
        CollectionTabPage* page = window.currentCollectionTab();
        ImageGraphicsItem* graphics = page->graphicsItem(item);
        QVERIFY(graphics->flags() & QGraphicsItem::ItemIsMovable);

        auto* list = window.findChild<QTreeWidget*>(QStringLiteral("toolList"));
        list->setCurrentItem(list->topLevelItem(0)->child(1));
        QCOMPARE(window.toolBox()->currentTool()->identifier(), QStringLiteral("RECTANGLE_SELECTION"));
        QVERIFY(!(graphics->flags() & QGraphicsItem::ItemIsMovable));
        drag(page, item, QPoint(2, 1), QPoint(5, 3));
        QCOMPARE(item->maskSelectedCount(), 12);
        QCOMPARE(item->tabRect().topLeft(), QPoint(3, 2));

        list->setCurrentItem(list->topLevelItem(1)->child(0));
        drag(page, item, QPoint(0, 0), QPoint(3, 4));
        const QString output = window.findChild<QTextEdit*>(QStringLiteral("textOutput"))->toPlainText();
        QVERIFY2(output.contains(QStringLiteral("Distance in probe")), qPrintable(output));
    }

    void measureDistanceReportsToThePanelAndTheOutput()
    {
        Bench bench;
        QVERIFY(QTest::qWaitForWindowExposed(bench.page.get()));
        QSciImage::SciValues sci = bench.item->sciValues();
        sci.xUnitPerPixel = sci.yUnitPerPixel = 0.5;
        sci.xUnit = sci.yUnit = QStringLiteral("nm");
        bench.item->setSciValues(sci);
        QSignalSpy output(bench.box.get(), &ToolBox::outputRequested);
        QTool* tool = bench.use("MEASURE_DISTANCE");
        bench.drag(QPoint(0, 4), QPoint(3, 0));
        QCOMPARE(output.count(), 1);
        const QString line = output.first().first().toString();
        QVERIFY2(line.contains(QStringLiteral("2.5 nm at 53.13°, 5 points at 53.13°")), qPrintable(line));
        QVERIFY(line.contains(QStringLiteral("probe")));
        QVERIFY(child<QLabel>(tool, "lbDistance")->text().contains(QStringLiteral("2.5 nm")));
        QVERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());
    }

    void rightClickOpensTheItemMenuUnlessTheToolDraws()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* item = new QSciImage(20, 10, Qt::white);
        item->setName(QStringLiteral("probe"));
        window.project()->currentTab()->addItem(item);
        CollectionTabPage* page = window.currentCollectionTab();
        page->setZoomPercent(300); // whole screen pixels per point: the clicks land where they aim
        auto* menu = window.findChild<QMenu*>(QStringLiteral("popupImageList"));
        const auto contextClick = [&](const QPoint& p) {
            mouse(page, item, QEvent::MouseButtonPress, p, Qt::RightButton, Qt::RightButton);
            const QPoint at = viewAt(page, item, p);
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, page->tabView()->viewport()->mapToGlobal(at));
            QApplication::sendEvent(page->tabView()->viewport(), &event);
            mouse(page, item, QEvent::MouseButtonRelease, p, Qt::RightButton, Qt::NoButton);
        };

        for (const char* tool : { "RECTANGLE_SELECTION", "MAGICWAND_SELECTION", "MEASURE_DISTANCE" }) {
            window.toolBox()->setCurrentTool(QLatin1String(tool));
            item->selectAllMask();
            contextClick(QPoint(4, 4));
            QTRY_VERIFY2(menu->isVisible(), tool);
            QVERIFY(item->isSelected()); // what the menu acts on
            menu->hide();
            item->setSelected(false);
            QCOMPARE(item->maskSelectedCount(), qsizetype(200)); // the user's mask is kept
            QVERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());
        }

        // The keyboard opens the menu with any tool, a drawing one too.
        window.toolBox()->setCurrentTool(QStringLiteral("PENCIL"));
        QTest::keyClick(page->tabView(), Qt::Key_Menu);
        QTRY_VERIFY(menu->isVisible());
        menu->hide();
        QTest::keyClick(page->tabView(), Qt::Key_F10, Qt::ShiftModifier);
        QTRY_VERIFY(menu->isVisible());
        menu->hide();
        // Also right after picking the tool, with the focus still in the tool list.
        QTest::keyClick(window.findChild<QTreeWidget*>(QStringLiteral("toolList")), Qt::Key_Menu);
        QTRY_VERIFY(menu->isVisible());
        menu->hide();

        // A drawing tool paints with the right colour and keeps the menu closed.
        window.toolBox()->currentTool()->setRightColor(Qt::blue);
        contextClick(QPoint(4, 4));
        QCOMPARE(item->picture().pixelColor(4, 4), QColor(Qt::blue));
        QTest::qWait(50);
        QVERIFY(!menu->isVisible());
    }

    void paintingOnAnItemShowingItsZMatrixShowsThePicture()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* item = new QSciImage(20, 10, Qt::white);
        item->setDrawSwitches(true, true, true, true);
        window.project()->currentTab()->addItem(item);
        CollectionTabPage* page = window.currentCollectionTab();
        page->setZoomPercent(300);
        window.toolBox()->setCurrentTool(QStringLiteral("PENCIL"));
        window.toolBox()->currentTool()->setLeftColor(Qt::red);
        drag(page, item, QPoint(2, 2), QPoint(6, 2));
        QVERIFY(!item->drawZInSciPaint());
        QCOMPARE(item->picture().pixelColor(4, 2), QColor(Qt::red));
        QVERIFY(window.statusBar()->currentMessage().contains(QStringLiteral("picture")));
        QCOMPARE(QSciHistoryManager::instance()->undoNames().size(), 1);
        QVERIFY(QSciHistoryManager::instance()->undo());
        item = window.project()->currentTab()->items().last();
        QVERIFY(item->drawZInSciPaint());
        QCOMPARE(item->picture().pixelColor(4, 2), QColor(Qt::white));
    }
};

QTEST_MAIN(TestTools)
#include "tst_tools.moc"
