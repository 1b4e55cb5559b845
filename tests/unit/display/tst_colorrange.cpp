#include "core/display/colorrange.h"

#include <QtTest>
#include <cmath>
#include <vector>

class TestColorRange : public QObject {
    Q_OBJECT

private slots:
    void outlierCutGivesTheRangeOfTheRest()
    {
        // A smooth field from 0 to 1 with a few huge spikes either way, as a scan with glitches has.
        std::vector<double> z;
        for (int i = 0; i < 10000; ++i)
            z.push_back(i / 9999.0);
        z[17] = 1e9;
        z[4242] = 5e8;
        z[9000] = -3e9;
        z.push_back(std::nan(""));
        z.push_back(INFINITY);
        double low = 0, high = 0;
        ColorRange range;
        range.mode = ColorRange::Mode::Cut;
        range.cutPercent = 1;
        range.limits(z.data(), qsizetype(z.size()), -3e9, 1e9, &low, &high);
        QVERIFY2(low >= 0 && low < 0.02, qPrintable(QString::number(low)));
        QVERIFY2(high <= 1 && high > 0.98, qPrintable(QString::number(high)));

        // No cut, and a field with nothing finite, fall back to what is there.
        ColorRange::cutLimits(z.data(), qsizetype(z.size()), 0, &low, &high);
        QCOMPARE(low, -3e9);
        QCOMPARE(high, 1e9);
        const double empty[] = { std::nan(""), -INFINITY };
        range.limits(empty, 2, 7, 8, &low, &high);
        QCOMPARE(low, 7.0);
        QCOMPARE(high, 8.0);
    }

    void valuesReadInTheItemsUnitUnderAnyPrefix_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "1.5"
                               << "m" << true << 1.5;
        QTest::newRow("same unit") << "-2e-3 nm"
                                   << "nm" << true << -2e-3;
        QTest::newRow("nano of metre") << "1.5 nm"
                                       << "m" << true << 1.5e-9;
        QTest::newRow("micro sign to nano") << QString::fromUtf8("2 µm") << "nm" << true << 2000.0;
        QTest::newRow("u for micro, no blank") << "3um"
                                               << "nm" << true << 3000.0;
        QTest::newRow("milli of a milli unit") << "1 m"
                                               << "mm" << true << 1000.0;
        QTest::newRow("two-letter base") << "2 kPa"
                                         << "Pa" << true << 2000.0;
        QTest::newRow("another unit") << "1 nA"
                                      << "nm" << false << 0.0;
        QTest::newRow("unitless item takes numbers only") << "1 nm"
                                                          << "" << false << 0.0;
        QTest::newRow("no number") << "abc"
                                   << "m" << false << 0.0;
        QTest::newRow("locale comma is no number") << "1,5"
                                                   << "m" << false << 0.0;
    }

    void valuesReadInTheItemsUnitUnderAnyPrefix()
    {
        QFETCH(QString, text);
        QFETCH(QString, unit);
        QFETCH(bool, ok);
        QFETCH(double, value);
        double read = 0;
        QCOMPARE(ColorRange::parseValue(text, unit, &read), ok);
        if (ok)
            QVERIFY2(qAbs(read - value) <= 1e-12 * qAbs(value), qPrintable(QString::number(read, 'g', 17)));
    }

    void textFormsRoundTripAndRefuseNonsense()
    {
        ColorRange fixed;
        QVERIFY(ColorRange::parseFixed(QStringLiteral("-1.5e-9:2e-9"), &fixed));
        QCOMPARE(fixed.minimum, -1.5e-9);
        QCOMPARE(fixed.maximum, 2e-9);
        QCOMPARE(ColorRange::fromString(fixed.toString()), fixed);
        ColorRange cut;
        QVERIFY(ColorRange::parseCut(QStringLiteral("2.5"), &cut));
        QCOMPARE(ColorRange::fromString(cut.toString()), cut);
        QCOMPARE(ColorRange().toString(), QString());

        ColorRange untouched;
        for (const char* bad : { "1", ":2", "1:", "a:b", "1:inf", "nan:1" })
            QVERIFY2(!ColorRange::parseFixed(QLatin1String(bad), &untouched), bad);
        for (const char* bad : { "-1", "50", "x", "" })
            QVERIFY2(!ColorRange::parseCut(QLatin1String(bad), &untouched), bad);
        QCOMPARE(untouched.mode, ColorRange::Mode::Full);
        QCOMPARE(ColorRange::fromString(QStringLiteral("4|mode3|cut7|percent2|80")).mode, ColorRange::Mode::Full);
        QCOMPARE(ColorRange::fromString(QStringLiteral("garbage")).mode, ColorRange::Mode::Full);
    }
};

QTEST_GUILESS_MAIN(TestColorRange)
#include "tst_colorrange.moc"
