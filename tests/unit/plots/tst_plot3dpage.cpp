#include "core/items/qsciimage.h"
#include "core/plots/plot3ddocument.h"
#include "core/plots/plot3dpage.h"
#include "core/plots/surfacegrid.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

Plot3dDocument demoDocument(int width, int height)
{
    QSciImage item(width, height, Qt::white);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            item.setZ(x, y, std::sin(x * 0.3) + y * 0.1);
    item.setZ(0, 0, qQNaN());
    item.setName(QStringLiteral("demo"));
    return Plot3dDocument::fromItem(item);
}

const QString hostile = QStringLiteral("</script><script>alert(1)</script>\"' \\ & ${plotID} \u2028");

} // namespace

class TestPlot3dPage : public QObject {
    Q_OBJECT

private slots:
    void templatesConsumeExactlyTheirPlaceholders()
    {
        QSet<QString> used;
        static const QRegularExpression placeholder(QStringLiteral("\\$\\{([A-Za-z0-9]+)\\}"));
        for (const char* name :
            { "examples/mainGL.html", "javascript/SurfacePlotGL.js", "javascript/webGL.js", "javascript/glMatrixGL.js",
                "javascript/ColourGradientGL.js", "javascript/excanvasGL.js", "css/style.css" }) {
            const QString text = Plot3dPage::templateText(QLatin1String(name));
            QVERIFY2(!text.isEmpty(), name);
            auto it = placeholder.globalMatch(text);
            while (it.hasNext())
                used.insert(it.next().captured(1));
        }
        const QStringList names = Plot3dPage::placeholderNames();
        QCOMPARE(used, QSet<QString>(names.cbegin(), names.cend()));
        QCOMPARE(Plot3dPage::values(demoDocument(4, 3), QSize(300, 200)).keys().size(), names.size());
    }

    void pageIsFilledAndCarriesTheData()
    {
        const Plot3dDocument document = demoDocument(7, 5);
        const QString page = Plot3dPage::html(document, QSize(640, 480), false);
        QVERIFY(!page.contains(QStringLiteral("${")));
        QVERIFY(page.contains(QStringLiteral("var numRows = 5;")));
        QVERIFY(page.contains(QStringLiteral("var numCols = 7;")));
        QVERIFY(page.contains(QStringLiteral("values[4] = ManyValues4();")));
        // Row 0 is the item's top row; its first point is the NaN set at the bottom-left, so it is in the last row.
        QVERIFY(page.contains(QStringLiteral("function ManyValues4() {\nvar row = new Array();\nrow[0] = NaN;")));
        QVERIFY(page.contains(QStringLiteral("{red:")));
        QVERIFY(page.contains(QStringLiteral("background:#000000")));
        QVERIFY(page.contains(QStringLiteral("src=\"../javascript/SurfacePlotGL.js\"")));
    }

    void hostileTextsStayText()
    {
        Plot3dDocument document = demoDocument(3, 3);
        for (const char* key : { "plotTitle", "xAxisTitle", "yAxisTitle", "zAxisTitle", "fontfamily" })
            document.setSetting(QLatin1String(key), hostile);
        document.xUnit = document.zUnit = hostile;
        const QString page = Plot3dPage::html(document, QSize(300, 300), true);
        // The only script end tags are the page's own; the hostile text brings none and no alert call.
        QCOMPARE(page.count(QStringLiteral("</script>")), page.count(QStringLiteral("<script")));
        QVERIFY(!page.contains(QStringLiteral("alert(1)</")));
        QVERIFY(!page.contains(QStringLiteral("<script>alert")));
        QVERIFY(!page.contains(QChar(0x2028)));
        QVERIFY(page.contains(QStringLiteral("\\u003c/script\\u003e")));
        // A title that looks like a placeholder is not filled in a second time.
        QVERIFY(page.contains(QStringLiteral("${plotID}")));
        QCOMPARE(Plot3dPage::scriptString(QStringLiteral("a\"b\\c\n")), QStringLiteral("a\\u0022b\\u005cc\\u000a"));
    }

    void tickLabelsFollowUnitsFormatAndDecimalMark_data()
    {
        QTest::addColumn<bool>("natural");
        QTest::addColumn<bool>("komma");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("lastXLabel");
        QTest::addColumn<QString>("xTitle");
        // 7 points over 2.5 um; five ticks put the last one at the far edge.
        QTest::newRow("points") << false << false << "0"
                                << "7.00"
                                << "x";
        QTest::newRow("natural units") << true << false << "0"
                                       << "2.50"
                                       << "x [um]";
        QTest::newRow("decimal comma") << true << true << "0"
                                       << "2,50"
                                       << "x [um]";
        QTest::newRow("scientific") << true << false << "1"
                                    << "2.50e+00"
                                    << "x [um]";
    }

    void tickLabelsFollowUnitsFormatAndDecimalMark()
    {
        QFETCH(bool, natural);
        QFETCH(bool, komma);
        QFETCH(QString, format);
        QFETCH(QString, lastXLabel);
        QFETCH(QString, xTitle);
        Plot3dDocument document = demoDocument(7, 5);
        document.xUnit = QStringLiteral("um");
        document.xSize = 2.5;
        document.setFlag(QStringLiteral("useNaturalUnits"), natural);
        document.setFlag(QStringLiteral("useKomma"), komma);
        document.setSetting(QStringLiteral("xNumericalFormat"), format);
        const QMap<QString, QString> values = Plot3dPage::values(document, QSize(300, 300));
        QVERIFY2(values.value(QStringLiteral("xTicks"))
                     .endsWith(QStringLiteral("[1, \"") + lastXLabel + QStringLiteral("\"]]")),
            qPrintable(values.value(QStringLiteral("xTicks"))));
        QCOMPARE(values.value(QStringLiteral("XAxisTitle")), xTitle);
        // Unchecked axes and titles leave their texts empty rather than showing stale ones.
        document.setFlag(QStringLiteral("xAxisCheck"), false);
        document.setFlag(QStringLiteral("plotTitleCheck"), false);
        const QMap<QString, QString> hidden = Plot3dPage::values(document, QSize(300, 300));
        QVERIFY(hidden.value(QStringLiteral("XAxisTitle")).isEmpty());
        QVERIFY(hidden.value(QStringLiteral("plotTitle")).isEmpty());
    }

    void precisionBoundsTheGrid()
    {
        Plot3dDocument document = demoDocument(300, 120);
        document.setFlag(QStringLiteral("autoPrecision"), false);
        document.setNumber(QStringLiteral("precision"), 50);
        const QMap<QString, QString> values = Plot3dPage::values(document, QSize(300, 300));
        QCOMPARE(values.value(QStringLiteral("numberOfCols")), QStringLiteral("50"));
        QCOMPARE(values.value(QStringLiteral("numberOfRows")), QStringLiteral("20"));
        // An absurd precision from a file is held to what a page can draw.
        document.setNumber(QStringLiteral("precision"), 1e9);
        QCOMPARE(Plot3dPage::gridSide(document), 400);
    }

    void standalonePageInlinesEverything()
    {
        const QString page = Plot3dPage::html(demoDocument(3, 3), QSize(300, 300), true);
        QVERIFY(!page.contains(QStringLiteral("src=")));
        QVERIFY(!page.contains(QStringLiteral("href=")));
        QVERIFY(page.contains(QStringLiteral("function SurfacePlot(")));
        QVERIFY(page.contains(QStringLiteral(".surfacePlot {")));
    }

    void gridReducesLargeDataByBlockMeans()
    {
        // 5 x 3 of 1..15 reduced to at most 2 cells a side: steps of 3 points, partial blocks at the edges.
        QVector<double> data(15);
        for (int i = 0; i < 15; ++i)
            data[i] = i + 1;
        data[0] = qQNaN();
        const SurfaceGrid grid = SurfaceGrid::reduce(data.constData(), 5, 3, 2, 2);
        QCOMPARE(grid.columns, 2);
        QCOMPARE(grid.rows, 1);
        // Block (0..2, 0..2) without the NaN: 2,3,6,7,8,11,12,13.
        QCOMPARE(grid.at(0, 0), (2 + 3 + 6 + 7 + 8 + 11 + 12 + 13) / 8.0);
        QCOMPARE(grid.at(1, 0), (4 + 5 + 9 + 10 + 14 + 15) / 6.0);

        const SurfaceGrid big
            = SurfaceGrid::reduce(QVector<double>(4096 * 4096, 1.0).constData(), 4096, 4096, 512, 512);
        QCOMPARE(big.columns, 512);
        QCOMPARE(big.rows, 512);
        QCOMPARE(big.at(511, 511), 1.0);
    }
};

QTEST_GUILESS_MAIN(TestPlot3dPage)
#include "tst_plot3dpage.moc"
