#include "../support/scopedsettings.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

#include "core/project/project.h"
#include "core/tables/qscisimpletablemodel.h"
#include "gui/app/outputpage.h"
#include "gui/tables/tablespanel.h"
#include "gui/tables/tableview.h"
#include "gui/tables/textspanel.h"
#include "scriptedwindow.h"

namespace {

void trigger(const QObject& owner, const char* name)
{
    auto* action = owner.findChild<QAction*>(QLatin1String(name));
    QVERIFY2(action && action->isEnabled(), name);
    action->trigger();
}

void select(TableView* view, const QList<QPair<int, int>>& cells)
{
    view->clearSelection();
    for (const auto& cell : cells)
        view->selectionModel()->select(view->table()->index(cell.first, cell.second), QItemSelectionModel::Select);
}

} // namespace

class TestTablesPanel : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<QTemporaryDir> m_work;
    std::unique_ptr<ScriptedWindow> m_window;

    TablesPanel* tables() const { return m_window->tablesPanel(); }

private slots:
    void init()
    {
        m_settings = std::make_unique<ScopedSettings>();
        m_work = std::make_unique<QTemporaryDir>();
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(900, 700));
    }

    void cleanup()
    {
        m_window.reset();
        m_settings.reset();
        m_work.reset();
    }

    void newTableTakesThePageSizeAndRunsFormulas()
    {
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeRowCount"))->setValue(6);
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeColCount"))->setValue(3);
        auto* onlySelected = m_window->findChild<QCheckBox*>(QStringLiteral("cbApplyFormulaToSelectedCells"));
        trigger(*m_window, "actionTable");
        TableView* view = tables()->currentTable();
        QVERIFY(view);
        QCOMPARE(view->table()->rows(), 6);
        QCOMPARE(view->table()->columns(), 3);

        onlySelected->setChecked(false);
        view->table()->setCellText(0, 0, QStringLiteral("1"));
        tables()->setFormula(QStringLiteral("cell($row-2,$col-1)+$row"));
        int asked = 0;
        tables()->askOnFailure = [&](const QString& result) {
            ++asked;
            // "NaN" from cell() joins the text "NaN1"; whatever it is, the first answer skips all.
            return result.startsWith(QLatin1String("NaN")) ? TableFormulaRun::Decision::SkipAll
                                                           : TableFormulaRun::Decision::Stop;
        };
        const TableFormulaRun::Outcome outcome = tables()->applyFormula();
        QCOMPARE(asked, 1);
        QCOMPARE(outcome.failures.size(), 3);
        QCOMPARE(view->table()->cellText(0, 0), QStringLiteral("1"));
        QCOMPARE(view->table()->cellText(5, 0), QStringLiteral("21")); // 1 + 2 + 3 + 4 + 5 + 6
        QVERIFY(!tables()->isRunning());
        view->setCurrentIndex(view->table()->index(0, 0));
        QTRY_VERIFY(tables()->statisticsText().contains(QLatin1String("count 6")));
        QVERIFY(tables()->statisticsText().contains(QLatin1String("max 21")));

        onlySelected->setChecked(true);
        select(view, { { 1, 1 }, { 4, 2 } });
        tables()->setFormula(QStringLiteral("-1"));
        QCOMPARE(tables()->applyFormula().written, qint64(2));
        QCOMPARE(view->table()->cellText(4, 2), QStringLiteral("-1"));
        QCOMPARE(view->table()->cellText(4, 1), QStringLiteral("14")); // the empty top cell reads as 0
    }

    void aRunEndsWhenItsTableGoesAway()
    {
        m_window->findChild<QCheckBox*>(QStringLiteral("cbApplyFormulaToSelectedCells"))->setChecked(false);
        tables()->newTable();
        tables()->setFormula(QStringLiteral("cell(-1,0)"));
        tables()->askOnFailure = [this](const QString&) {
            trigger(*m_window, "actionProject"); // closes every table while the question is open
            return TableFormulaRun::Decision::Skip;
        };
        const TableFormulaRun::Outcome outcome = tables()->applyFormula();
        QVERIFY(outcome.stopped);
        QCOMPARE(outcome.visited, qint64(1));
        QCOMPARE(tables()->tableCount(), 0);
        QVERIFY(!tables()->isRunning());
    }

    void editingReshapesAndCopiesAsTabSeparatedText()
    {
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeRowCount"))->setValue(3);
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeColCount"))->setValue(2);
        TableView* view = tables()->newTable();
        view->setCurrentIndex(view->table()->index(1, 1));
        view->pasteText(QStringLiteral("a\tb\tc\n1\t2\t3\n"));
        QCOMPARE(view->table()->columns(), 4); // grown to fit, nothing lost
        QCOMPARE(view->table()->cellText(2, 3), QStringLiteral("3"));
        select(view, { { 1, 1 }, { 1, 2 }, { 2, 1 } });
        QCOMPARE(view->selectionText(), QStringLiteral("a\tb\n1\t\n"));

        view->setCurrentIndex(view->table()->index(2, 0));
        select(view, { { 0, 0 } });
        trigger(*tables(), "actionDeleteRows");
        QCOMPARE(view->table()->rows(), 2);
        QCOMPARE(view->table()->cellText(0, 1), QStringLiteral("a"));
        view->setCurrentIndex(view->table()->index(0, 0));
        view->clearSelection();
        trigger(*tables(), "actionInsertColumns");
        QCOMPARE(view->table()->columns(), 5);
        QCOMPARE(view->table()->cellText(0, 2), QStringLiteral("a"));
        view->setCurrentIndex(view->table()->index(0, 3));
        trigger(*tables(), "actionSortDescending");
        QCOMPARE(view->table()->cellText(0, 3), QStringLiteral("2"));
        trigger(*tables(), "actionTransposeTable");
        QCOMPARE(view->table()->rows(), 5);
    }

    void filesOpenThroughTheMainWindow()
    {
        const QString csv = m_work->filePath(QStringLiteral("m.csv"));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x;y\n1,5;2\n-3,25;4\n");
        file.close();
        QString message;
        QVERIFY(tables()->importText(csv, &message));
        TableView* imported = tables()->currentTable();
        QCOMPARE(imported->table()->cellText(2, 0), QStringLiteral("-3.25"));

        const QString saved = m_work->filePath(QStringLiteral("m.table.velm"));
        QVERIFY2(tables()->saveCurrent(saved, &message), qPrintable(message));
        const int before = tables()->tableCount();
        QVERIFY(m_window->openFile(saved, &message));
        QCOMPARE(tables()->tableCount(), before + 1);
        QCOMPARE(tables()->currentTable()->table()->allCells(), imported->table()->allCells());

        TextsPanel* texts = m_window->textsPanel();
        trigger(*m_window, "actionText");
        texts->currentText()->setPlainText(QStringLiteral("notes | <b> & µ\n"));
        const QString text = m_work->filePath(QStringLiteral("n.text.velm"));
        QVERIFY(texts->saveCurrent(text, &message));
        QVERIFY(m_window->openFile(text, &message));
        QCOMPARE(texts->textCount(), 2);
        QCOMPARE(texts->currentText()->toPlainText(), QStringLiteral("notes | <b> & µ\n"));

        m_window->appendOutput(QStringLiteral("<b>grains:</b> 12"));
        const QString output = m_work->filePath(QStringLiteral("o.output.velm"));
        QVERIFY(texts->saveOutput(output, &message));
        auto* page = m_window->findChild<OutputPage*>();
        page->textEdit()->clear();
        QVERIFY(m_window->openFile(output, &message));
        QVERIFY(page->textEdit()->toPlainText().contains(QLatin1String("grains: 12")));
        QVERIFY(!m_window->openFile(csv + QStringLiteral(".table.velm"), &message));
        QVERIFY(message.startsWith(QLatin1String("File does not exist")));
    }

    void projectsKeepTheirTablesAndTexts()
    {
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeRowCount"))->setValue(2);
        m_window->findChild<QSpinBox*>(QStringLiteral("sbTableSizeColCount"))->setValue(2);
        tables()->newTable()->table()->setCellText(1, 1, QStringLiteral("x|<y>"));
        tables()->newTable();
        m_window->textsPanel()->newText(QStringLiteral("log"), QStringLiteral("grains & voids"));
        QVERIFY(m_window->project()->isModified());
        const QString folder = m_work->filePath(QStringLiteral("p"));
        QString message;
        QVERIFY2(m_window->saveProject(folder, &message), qPrintable(message));
        trigger(*tables(), "actionCloseTable");
        QVERIFY(m_window->project()->isModified());
        QVERIFY(m_window->saveProject(folder, &message));
        QCOMPARE(QDir(folder + QStringLiteral("/tables")).entryList(QDir::Files).size(), 1);

        m_window->answer = QMessageBox::No;
        trigger(*m_window, "actionProject");
        QCOMPARE(tables()->tableCount(), 0);
        QCOMPARE(m_window->textsPanel()->textCount(), 0);
        QVERIFY(m_window->openProject(folder, &message));
        QVERIFY2(message.isEmpty(), qPrintable(message));
        QVERIFY(!m_window->project()->isModified());
        QCOMPARE(tables()->tableCount(), 1);
        QCOMPARE(tables()->currentTable()->table()->cellText(1, 1), QStringLiteral("x|<y>"));
        QCOMPARE(m_window->textsPanel()->allTexts().value(0).second, QStringLiteral("grains & voids"));
    }
};

QTEST_MAIN(TestTablesPanel)
#include "tst_tablespanel.moc"
