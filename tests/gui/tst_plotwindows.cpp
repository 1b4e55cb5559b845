#include "../support/scopedsettings.h"

#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QWebFrame>
#include <QWebPage>
#include <QtTest>
#include <cmath>
#include <memory>
#include "gui/plots/qcustomplotheader.h"

#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/tables/qscisimpletablemodel.h"
#include "gui/app/mainwindow.h"
#include "gui/plots/form3dplotopengl.h"
#include "gui/plots/formaddplot.h"
#include "gui/tools/qtoollineprofile.h"
#include "core/plots/plot2dfile.h"
#include "core/plots/plot3ddocument.h"
#include "core/plots/plot3dpage.h"
#include "gui/plots/form3dplot.h"
#include "gui/plots/formplot.h"
#include "gui/plots/plotwebview.h"

namespace {

/** A page that keeps what scripts report instead of showing it. */
class RecordingPage final : public QWebPage {
public:
    QStringList errors;
    QStringList alerts;

protected:
    void javaScriptConsoleMessage(const QString& message, int line, const QString&) override
    {
        errors << QStringLiteral("%1: %2").arg(line).arg(message);
    }
    void javaScriptAlert(QWebFrame*, const QString& message) override { alerts << message; }
};

Plot3dDocument demoDocument(const QString& title)
{
    QSciImage item(60, 40, Qt::white);
    for (int x = 0; x < 60; ++x)
        for (int y = 0; y < 40; ++y)
            item.setZ(x, y, std::sin(x * 0.2) * std::cos(y * 0.15));
    item.setName(title);
    Plot3dDocument document = Plot3dDocument::fromItem(item);
    document.setFlag(QStringLiteral("useWebGL"), false);
    return document;
}

/** Points that differ from the page's black background. */
int drawnPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += (image.pixel(x, y) & 0xFFFFFF) != 0;
    return count;
}

Plot2dDocument twoCurves()
{
    Plot2dDocument document;
    Plot2dCurve a { QStringLiteral("rising"), { QStringLiteral("x"), QStringLiteral("a") }, {} };
    Plot2dCurve b { QStringLiteral("falling"), { QStringLiteral("x"), QStringLiteral("b") }, {} };
    for (int i = 1; i <= 20; ++i) {
        a.values << i << i * i;
        b.values << i << 400.0 / i;
    }
    document.curves = { a, b };
    document.setSetting(QStringLiteral("title"), QStringLiteral("Two curves"));
    return document;
}

} // namespace

class TestPlotWindows : public QObject {
    Q_OBJECT

private slots:
    void surfacePageRunsAndDraws_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("standalone");
        QTest::newRow("referenced templates") << QStringLiteral("demo") << false;
        QTest::newRow("inlined, hostile title") << QStringLiteral("</script><script>alert(1)</script>") << true;
    }

    void surfacePageRunsAndDraws()
    {
        QFETCH(QString, title);
        QFETCH(bool, standalone);
        RecordingPage page;
        page.setViewportSize(QSize(400, 300));
        QSignalSpy loaded(&page, &QWebPage::loadFinished);
        page.mainFrame()->setHtml(Plot3dPage::html(demoDocument(title), QSize(400, 300), standalone),
            standalone ? QUrl() : QUrl(Plot3dPage::baseUrl()));
        QTRY_VERIFY(loaded.count() == 1);
        QVERIFY2(page.errors.isEmpty(), qPrintable(page.errors.join(QLatin1Char('\n'))));
        QVERIFY(page.alerts.isEmpty());
        QCOMPARE(page.mainFrame()->evaluateJavaScript(QStringLiteral("window.surfacePlotMode")).toString(),
            QStringLiteral("canvas"));
        QCOMPARE(
            page.mainFrame()->evaluateJavaScript(QStringLiteral("window.surfacePlot.options.title")).toString(), title);
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        page.mainFrame()->render(&painter);
        painter.end();
        QVERIFY2(drawnPixels(image) > 400 * 300 / 20, qPrintable(QString::number(drawnPixels(image))));
    }

    void surfaceWindowSavesPicturesAndRefusesHugeOnes()
    {
        ScopedSettings settings;
        Form3dPlot window(demoDocument(QStringLiteral("demo")));
        QStringList messages;
        window.showMessage = [&messages](const QString& title, const QString& text) { messages << title + text; };
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        // Ticking natural units on an item without any is refused with a note.
        window.findChild<QCheckBox*>(QStringLiteral("cbNaturalUnits"))->setChecked(true);
        QCOMPARE(messages, QStringList { QStringLiteral("AttentionNo natural units available!") });
        QVERIFY(!window.document().flag(QStringLiteral("useNaturalUnits")));
        // Axis switches reach the document and are remembered for the next window.
        window.findChild<QCheckBox*>(QStringLiteral("zAxisCheck"))->setChecked(false);
        QVERIFY(!window.document().flag(QStringLiteral("zAxisCheck")));
        QVERIFY(!Options::getBool(QStringLiteral("form3dPlot.zAxisCheck"), true));
        QVERIFY(!Form3dPlot(demoDocument(QStringLiteral("next"))).document().flag(QStringLiteral("zAxisCheck")));

        const QString png = m_dir.filePath("surface.png");
        QString message;
        QVERIFY2(window.savePicture(png, &message), qPrintable(message));
        QCOMPARE(QImage(png).size(), QSize(1200, 900));
        QVERIFY(drawnPixels(QImage(png).convertToFormat(QImage::Format_RGB32)) > 1200 * 900 / 20);
        Plot3dDocument huge = window.document();
        huge.setNumber(QStringLiteral("saveWidth"), Form3dPlot::MaxSaveSide + 1);
        Form3dPlot tooWide(huge);
        QVERIFY(!tooWide.savePicture(m_dir.filePath("wide.png"), &message));
        QCOMPARE(message, QStringLiteral("Chosen value exceeds allowed maximum range of width!"));
        QVERIFY(!QFile::exists(m_dir.filePath("wide.png")));

        const QString file = m_dir.filePath("surface.plot3d.velm");
        QVERIFY2(window.saveFile(file, &message), qPrintable(message));
        QProcess info;
        info.start(QStringLiteral(VELMORA_CLI), { QStringLiteral("info"), file });
        QVERIFY(info.waitForFinished(30000));
        const QJsonObject json = QJsonDocument::fromJson(info.readAllStandardOutput()).object();
        QCOMPARE(json.value(QStringLiteral("type")).toString(), QStringLiteral("3dPlot"));
        QCOMPARE(json.value(QStringLiteral("imageWidth")).toInt(), 60);
        QCOMPARE(json.value(QStringLiteral("plots"))
                     .toArray()
                     .first()
                     .toObject()
                     .value(QStringLiteral("values"))
                     .toArray()
                     .size(),
            60 * 40);

        // A saved plot opens as saved, not with what a later window left in the settings.
        Options::setBool(QStringLiteral("form3dPlot.useKomma"), true);
        std::unique_ptr<Form3dPlot> reopened(Form3dPlot::open(file, nullptr, &message));
        QVERIFY2(reopened, qPrintable(message));
        QCOMPARE(reopened->document().z, window.document().z);
        QCOMPARE(reopened->document().settings(), window.document().settings());
        QVERIFY(Form3dPlot(window.document()).document().flag(QStringLiteral("useKomma")));
    }

    void plotWindowSavesOpensAndExports()
    {
        ScopedSettings settings;
        FormPlot window;
        window.setDocument(twoCurves());
        window.rescale();
        QCOMPARE(window.plot()->graphCount(), 2);
        QCOMPARE(window.plot()->xAxis->range().upper, 20.0);
        // The settings page drives the plot: a log scale box switches the axis, and its siblings go off.
        window.findChild<QCheckBox*>(QStringLiteral("yLog10Check"))->setChecked(true);
        QCOMPARE(window.plot()->yAxis->scaleType(), QCPAxis::stLogarithmic);
        QVERIFY(!window.document().flag(QStringLiteral("yLinearCheck")));

        QString message;
        const QString path = m_dir.filePath("two.plot2d.velm");
        QVERIFY2(window.saveFile(path, &message), qPrintable(message));
        std::unique_ptr<FormPlot> reopened(FormPlot::open(path, nullptr, &message));
        QVERIFY2(reopened, qPrintable(message));
        QCOMPARE(reopened->plot()->graphCount(), 2);
        QCOMPARE(reopened->document().settings(), window.document().settings());
        QCOMPARE(reopened->plot()->yAxis->scaleType(), QCPAxis::stLogarithmic);

        for (const char* name : { "two.png", "two.pdf", "two.svg", "two.csv" }) {
            const QString target = m_dir.filePath(QLatin1String(name));
            const bool ok = target.endsWith(QLatin1String(".csv")) ? window.exportCsv(target, &message)
                                                                   : window.exportPicture(target, &message);
            QVERIFY2(ok, qPrintable(message));
            QVERIFY2(QFileInfo(target).size() > 100, name);
        }
        QFile svg(m_dir.filePath("two.svg"));
        QVERIFY(svg.open(QIODevice::ReadOnly));
        QVERIFY(svg.readAll().contains("<svg"));
    }

    void addPlotTakesNumericRowsOfTheChosenColumns()
    {
        QSciSimpleTableModel table(4, 3);
        const char* cells[4][3] = { { "1", "10", "a" }, { "2", "x", "5" }, { "", "30", "6" }, { "4", "40", "7e1" } };
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 3; ++c)
                table.setCellText(r, c, QLatin1String(cells[r][c]));
        const QVector<Plot2dCurve> curves
            = FormAddPlot::curvesOf(table, QStringLiteral("T"), 0, { 1, 2 }, QStringLiteral("run"));
        QCOMPARE(curves.size(), 2);
        QCOMPARE(curves[0].values, QVector<double>({ 1, 10, 4, 40 }));
        QCOMPARE(curves[1].values, QVector<double>({ 2, 5, 4, 70 }));
        QVERIFY(curves[0].plotName.startsWith(QStringLiteral("run ")));
        QVERIFY(FormAddPlot::curvesOf(table, QStringLiteral("T"), 5, { 1 }).isEmpty());
    }

    void profileToolShowsAndExportsTheProfile()
    {
        ScopedSettings settings;
        QSciImage item(30, 10, Qt::white);
        for (int x = 0; x < 30; ++x)
            for (int y = 0; y < 10; ++y)
                item.setZ(x, y, x < 15 ? 1.0 : 4.0);
        QToolLineProfile tool;
        tool.setTarget(nullptr, &item);
        tool.beginDrag(QPoint(2, 5), Qt::LeftButton);
        tool.updateDrag(QPoint(20, 5));
        tool.endDrag(QPoint(27, 5), Qt::LeftButton);
        QCOMPARE(tool.lastProfile().size(), 26);
        FormPlot* window = tool.plotWindow();
        QVERIFY(window && window->isVisible());
        QCOMPARE(window->plot()->graphCount(), 1);
        QCOMPARE(window->plot()->yAxis->range().lower < 1.0, true);
        const QString csv = m_dir.filePath("profile.csv");
        QString message;
        QVERIFY2(window->exportCsv(csv, &message), qPrintable(message));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
        QCOMPARE(lines.size(), 27);
        QCOMPARE(lines.first(), QByteArray("distance,z"));
        QCOMPARE(lines.last(), QByteArray("25,4"));
        delete window;
    }

    void openGlWindowReducesLargeItems()
    {
        QSciImage item(2048, 1000, Qt::white);
        form3dplotOpenGL window(item);
        QCOMPARE(window.grid().columns, 512);
        QCOMPARE(window.grid().rows, 250);
        QSciImage small(40, 30, Qt::white);
        QCOMPARE(form3dplotOpenGL(small).grid().columns, 40);
    }

    void mainWindowOpensPlotsAndMakesOneSurfacePerItem()
    {
        ScopedSettings settings;
        MainWindow window;
        const QString good = m_dir.filePath("main.plot2d.velm");
        QString message;
        QVERIFY(Plot2dFile::write(twoCurves(), good, &message));
        QVERIFY2(window.openFile(good, &message), qPrintable(message));
        QCOMPARE(window.findChildren<FormPlot*>().size(), 1);
        const QString bad = m_dir.filePath("bad.plot2d.velm");
        QFile broken(bad);
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a plot");
        broken.close();
        QVERIFY(!window.openFile(bad, &message));
        QVERIFY(message.startsWith(QStringLiteral("File does not contain .velm data.")));
        QCOMPARE(window.findChildren<FormPlot*>().size(), 1);

        CollectionTab* tab = window.project()->currentTab();
        QVERIFY(tab && !tab->items().isEmpty());
        auto* second = new QSciImage(20, 10, Qt::white);
        tab->addItem(second);
        for (QSciImage* item : tab->items())
            item->setSelected(true);
        QVERIFY(QMetaObject::invokeMethod(&window, "on_tb3dPlot_clicked"));
        QCOMPARE(window.findChildren<Form3dPlot*>().size(), tab->items().size());
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestPlotWindows)
#include "tst_plotwindows.moc"
