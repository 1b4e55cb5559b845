#include "core/plots/plot2ddocument.h"
#include "core/plots/plot2dpainter.h"

#include <QtTest>

namespace {

int pixelsOf(const QImage& image, const QColor& colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            // Antialiased lines rarely hit the exact colour; a near one counts.
            const QColor c(image.pixel(x, y));
            count += std::abs(c.red() - colour.red()) + std::abs(c.green() - colour.green())
                    + std::abs(c.blue() - colour.blue())
                < 60;
        }
    return count;
}

Plot2dDocument rampDocument()
{
    Plot2dDocument d;
    Plot2dCurve curve { QStringLiteral("ramp"), { QStringLiteral("x"), QStringLiteral("y") }, {} };
    for (int i = -10; i <= 100; ++i)
        curve.values << i << i;
    d.curves = { curve };
    d.setNumber(QStringLiteral("xRangeMin"), -10);
    d.setNumber(QStringLiteral("xRangeMax"), 100);
    d.setNumber(QStringLiteral("yRangeMin"), -10);
    d.setNumber(QStringLiteral("yRangeMax"), 100);
    d.setFlag(QStringLiteral("legendCheck"), false);
    return d;
}

} // namespace

class TestPlot2dPainter : public QObject {
    Q_OBJECT

private slots:
    void drawsEachCurveInItsColour()
    {
        Plot2dDocument d = rampDocument();
        Plot2dCurve second = d.curves.first();
        second.plotName = QStringLiteral("second");
        for (qsizetype i = 1; i < second.values.size(); i += 2)
            second.values[i] = 50;
        d.curves.append(second);
        const QImage image = Plot2dPainter::render(d, QSize(400, 300));
        QCOMPARE(image.size(), QSize(400, 300));
        QVERIFY(pixelsOf(image, Plot2dPainter::curveColor(0)) > 50);
        QVERIFY(pixelsOf(image, Plot2dPainter::curveColor(1)) > 50);
    }

    void logScalesSkipWhatTheyCannotShow()
    {
        // Values at or below zero have no logarithm: they break the curve instead of drawing to infinity, and a
        // range starting at 0 is repaired rather than making every tick NaN.
        Plot2dDocument d = rampDocument();
        d.setScale(QLatin1Char('y'), Plot2dDocument::Scale::Log10);
        d.setScale(QLatin1Char('x'), Plot2dDocument::Scale::Ln);
        d.setNumber(QStringLiteral("yRangeMin"), 0);
        d.setNumber(QStringLiteral("xRangeMin"), 1);
        d.setFlag(QStringLiteral("yTickStepAutoCheck"), false);
        d.setNumber(QStringLiteral("yTickStep"), 1e-12);
        const QImage image = Plot2dPainter::render(d, QSize(400, 300));
        QVERIFY(pixelsOf(image, Plot2dPainter::curveColor(0)) > 20);
        QVERIFY(!d.flag(QStringLiteral("yLinearCheck")));
        QCOMPARE(d.scale(QLatin1Char('x')), Plot2dDocument::Scale::Ln);
    }

    void absurdSizesAreBounded()
    {
        QCOMPARE(Plot2dPainter::render(rampDocument(), QSize(1, 100000)).size(), QSize(100, 8000));
    }
};

QTEST_MAIN(TestPlot2dPainter)
#include "tst_plot2dpainter.moc"
