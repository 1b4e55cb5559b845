#include "core/base/tokencodec.h"
#include "core/display/colorgradient.h"

#include <QtTest>

namespace {

QString withPair(QString text, const QString& key, const QString& value)
{
    TokenCodec::append(text, key);
    TokenCodec::append(text, value);
    return text;
}

} // namespace

class TestColorGradient : public QObject {
    Q_OBJECT

private slots:
    void builtInsRoundTripExactly_data()
    {
        QTest::addColumn<int>("number");
        for (int n = 1; n <= ColorGradient::builtInCount(); ++n)
            QTest::addRow("%d", n) << n;
    }

    void builtInsRoundTripExactly()
    {
        QFETCH(int, number);
        const ColorGradient builtIn = ColorGradient::builtIn(number);
        const QString text = builtIn.toString();
        ColorGradient read;
        read.fromString(text);
        QCOMPARE(read.toString(), text);
        QVERIFY(read == builtIn);
        QCOMPARE(read.stops().size(), 8);
        QCOMPARE(read.ramp(), builtIn.ramp());
    }

    void builtInTextsKeepSlotOrder()
    {
        QCOMPARE(ColorGradient::builtInCount(), 16);
        QVERIFY(ColorGradient::builtIn(1).toString().startsWith(QStringLiteral(
            "3|rep1|15|c0act1|15|c0col9|0;0;0;2555|c0pos1|55|c1act1|05|c1col15|255;255;255;2555|c1pos2|50")));
        // Gradient 2 reverses gradient 1 by positions only, so its slot 0 stays black at 95.
        const GradientStop first = ColorGradient::builtIn(2).stops().at(0);
        QCOMPARE(first.color, QColor(0, 0, 0));
        QCOMPARE(first.position, 95.0);
        QCOMPARE(ColorGradient::builtIn(15).repeat(), 5);
        QVERIFY(ColorGradient::builtIn(0) == ColorGradient());
        QVERIFY(ColorGradient::builtIn(17) == ColorGradient());
        QVERIFY(!(ColorGradient::builtIn(1) == ColorGradient()));
    }

    void defaultGradientRunsBlackToWhite()
    {
        const ColorGradient gradient;
        QCOMPARE(gradient.ramp().size(), QSize(1, ColorGradient::RampSize));
        QCOMPARE(gradient.ramp().format(), QImage::Format_ARGB32);
        QCOMPARE(gradient.rampData()[0], qRgba(0, 0, 0, 255));
        QCOMPARE(gradient.rampData()[999], qRgba(255, 255, 255, 255));
        for (int i = 0; i < ColorGradient::RampSize; ++i)
            QCOMPARE(gradient.reversedRamp().pixel(0, 999 - i), gradient.rampData()[i]);
    }

    void latestOfEqualPositionsWins()
    {
        // Gradient 15 stacks slots 1, 3 and 5 at 50: slot 5's colour shows in the middle of each period.
        const ColorGradient gradient = ColorGradient::builtIn(15);
        QCOMPARE(gradient.colorAt(0.5, 0, 1), qRgba(234, 234, 234, 255));
        for (int period = 0; period < 5; ++period) {
            const QRgb middle = gradient.colorAt((period + 0.5) / 5, 0, 1);
            QVERIFY2(qAbs(qRed(middle) - 234) <= 2, qPrintable(QString::number(qRed(middle))));
        }
    }

    void readsAnyNumberOfStops()
    {
        QString ninth = ColorGradient::builtIn(13).toString();
        ninth = withPair(ninth, QStringLiteral("c8act"), QStringLiteral("1"));
        ninth = withPair(ninth, QStringLiteral("c8col"), QStringLiteral("1;2;3;4"));
        ninth = withPair(ninth, QStringLiteral("c8pos"), QStringLiteral("12.5"));
        ColorGradient gradient;
        gradient.fromString(ninth);
        QCOMPARE(gradient.stops().size(), 9);
        QCOMPARE(gradient.stops().at(8), (GradientStop { true, QColor(1, 2, 3, 4), 12.5 }));
        QCOMPARE(gradient.toString(), ninth);

        // Missing keys: rep counts as 1, a colour as opaque black, a position as 0; c1act ends the list.
        gradient.fromString(withPair(QString(), QStringLiteral("c0act"), QStringLiteral("1")));
        QCOMPARE(gradient.repeat(), 1);
        QCOMPARE(gradient.stops().size(), 1);
        QCOMPARE(gradient.stops().at(0), (GradientStop { true, QColor(0, 0, 0, 255), 0 }));
    }

    void trailingKeyWithoutValueIsIgnored()
    {
        const QString text = ColorGradient::builtIn(3).toString();
        ColorGradient gradient;
        gradient.fromString(text + QStringLiteral("5|c8act"));
        QVERIFY(gradient == ColorGradient::builtIn(3));
    }

    void badValuesReadAsDefaults()
    {
        ColorGradient gradient = ColorGradient::builtIn(4);
        gradient.fromString(QString());
        QVERIFY(gradient == ColorGradient::builtIn(4));

        QString text = withPair(QString(), QStringLiteral("rep"), QStringLiteral("x"));
        text = withPair(text, QStringLiteral("c0act"), QStringLiteral("yes"));
        text = withPair(text, QStringLiteral("c0col"), QStringLiteral("1;2;3"));
        text = withPair(text, QStringLiteral("c0pos"), QStringLiteral("abc"));
        gradient.fromString(text);
        QCOMPARE(gradient.repeat(), 0);
        QCOMPARE(gradient.stops(), (QVector<GradientStop> { GradientStop { false, QColor(0, 0, 0, 255), 0 } }));
        QCOMPARE(gradient.rampData()[500], qRgba(0, 0, 0, 0));
    }

    void onlyActiveStopsInsideTheScalePaint()
    {
        ColorGradient gradient;
        QVector<GradientStop> stops = gradient.stops();
        for (GradientStop& stop : stops)
            stop.active = false;
        gradient.setStops(stops);
        for (int i = 0; i < ColorGradient::RampSize; ++i) {
            QCOMPARE(qAlpha(gradient.rampData()[i]), 0);
            QCOMPARE(qAlpha(gradient.reversedRamp().pixel(0, i)), 0);
        }

        // A stop outside 0..100 is kept and written, but the ramp is as if it were not there.
        const ColorGradient plain;
        stops = plain.stops();
        stops[3] = GradientStop { true, QColor(255, 0, 0), 150 };
        gradient.setStops(stops);
        QCOMPARE(gradient.ramp(), plain.ramp());
        QVERIFY(gradient.toString().contains(QStringLiteral("5|c3pos3|150")));

        // Counts below 1 paint like 1.
        gradient = plain;
        gradient.setRepeat(0);
        QCOMPARE(gradient.ramp(), plain.ramp());
    }

    void colorAtMapsTheRange_data()
    {
        QTest::addColumn<double>("z");
        QTest::addColumn<double>("zMin");
        QTest::addColumn<double>("zMax");
        QTest::addColumn<int>("entry");
        QTest::newRow("zMin") << 2.0 << 2.0 << 4.0 << 0;
        QTest::newRow("zMax") << 4.0 << 2.0 << 4.0 << 999;
        QTest::newRow("below") << -1e300 << 2.0 << 4.0 << 0;
        QTest::newRow("above") << 1e300 << 2.0 << 4.0 << 999;
        QTest::newRow("tenth of a percent") << 2.0021 << 2.0 << 4.0 << 1;
        QTest::newRow("just below a tenth") << 2.0019 << 2.0 << 4.0 << 0;
        QTest::newRow("middle") << 3.0 << 2.0 << 4.0 << 500;
        QTest::newRow("flat, equal") << 1.0 << 1.0 << 1.0 << 0;
        QTest::newRow("flat, above") << 1.0000001 << 1.0 << 1.0 << 999;
        QTest::newRow("flat, below") << 0.9999999 << 1.0 << 1.0 << 0;
        QTest::newRow("mirrored, high z") << 4.0 << 4.0 << 2.0 << 0;
        QTest::newRow("mirrored, low z") << 2.0 << 4.0 << 2.0 << 999;
        QTest::newRow("mirrored, quarter") << 3.5 << 4.0 << 2.0 << 250;
    }

    void colorAtMapsTheRange()
    {
        QFETCH(double, z);
        QFETCH(double, zMin);
        QFETCH(double, zMax);
        QFETCH(int, entry);
        // Four black-to-white periods: neighbouring entries differ, so an index off by one shows.
        ColorGradient gradient;
        gradient.setStops({ { true, QColor(0, 0, 0), 0 }, { true, QColor(255, 255, 255), 100 } });
        gradient.setRepeat(4);
        QCOMPARE(gradient.colorAt(z, zMin, zMax), gradient.rampData()[entry]);
    }

    void zFromColorUsesTheGreyLevel()
    {
        QCOMPARE(ColorGradient::zFromColor(qRgb(0, 0, 0), -1, 3), -1.0);
        QCOMPARE(ColorGradient::zFromColor(qRgb(255, 255, 255), -1, 3), 3.0);
        QCOMPARE(ColorGradient::zFromColor(qRgba(10, 20, 31, 0), 0, 255), 61 / 3.0);
    }

    void previewScalesTheRamp()
    {
        const QImage preview = ColorGradient().preview(16, 50);
        QCOMPARE(preview.size(), QSize(16, 50));
        QCOMPARE(qRed(preview.pixel(8, 0)), 0);
        QCOMPARE(qRed(preview.pixel(8, 49)), 255);
    }
};

QTEST_GUILESS_MAIN(TestColorGradient)
#include "tst_colorgradient.moc"
