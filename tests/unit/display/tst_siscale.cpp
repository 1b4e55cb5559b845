#include "core/display/siscale.h"

#include <QtTest>

class TestSiScale : public QObject {
    Q_OBJECT

private slots:
    void prefixKeepsNumbersBetweenOneAndThousand_data()
    {
        QTest::addColumn<double>("magnitude");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<double>("shown");
        QTest::addColumn<QString>("shownUnit");
        QTest::newRow("1500 nm") << 1500.0 << "nm" << 1.5 << QString::fromUtf8("µm");
        QTest::newRow("1000 nm, exact power") << 1000.0 << "nm" << 1.0 << QString::fromUtf8("µm");
        QTest::newRow("999 nm stays") << 999.0 << "nm" << 999.0 << "nm";
        QTest::newRow("negative") << -0.02 << "m" << -20.0 << "mm";
        QTest::newRow("micro as u") << 2500.0 << "um" << 2.5 << "mm";
        QTest::newRow("Greek mu") << 0.5 << QString::fromUtf8("μm") << 500.0 << "nm";
        QTest::newRow("bare base") << 3e-10 << "A" << 300.0 << "pA";
        QTest::newRow("two-letter base") << 12000.0 << "Pa" << 12.0 << "kPa";
        QTest::newRow("prefixed two-letter base") << 0.004 << "kHz" << 4.0 << "Hz";
        QTest::newRow("mV to V") << 2000.0 << "mV" << 2.0 << "V";
        QTest::newRow("tiny, below yocto") << 1e-30 << "m" << 1e-6 << "ym";
        QTest::newRow("huge, above yotta") << 5e27 << "m" << 5000.0 << "Ym";
        QTest::newRow("huge prefixed") << 5000.0 << "Tm" << 5.0 << "Pm";
        QTest::newRow("zero keeps unit") << 0.0 << "nm" << 0.0 << "nm";
        QTest::newRow("unknown unit untouched") << 1500.0 << "deg" << 1500.0 << "deg";
        QTest::newRow("prefix-like unknown") << 1500.0 << "min" << 1500.0 << "min";
        QTest::newRow("no unit untouched") << 1e-7 << "" << 1e-7 << "";
        QTest::newRow("not a number") << qQNaN() << "nm" << qQNaN() << "nm";
    }

    void prefixKeepsNumbersBetweenOneAndThousand()
    {
        QFETCH(double, magnitude);
        QFETCH(QString, unit);
        QFETCH(double, shown);
        QFETCH(QString, shownUnit);
        const SiScale::Scaled scaled = SiScale::forMagnitude(magnitude, unit);
        QCOMPARE(scaled.unit, shownUnit);
        if (qIsNaN(shown))
            QVERIFY(qIsNaN(magnitude * scaled.factor));
        else
            QVERIFY2(qAbs(magnitude * scaled.factor - shown) <= 1e-12 * qAbs(shown),
                qPrintable(QString::number(magnitude * scaled.factor, 'g', 17)));
    }

    void rangeUsesItsLargerEnd()
    {
        QCOMPARE(SiScale::forRange(-1500, 20, QStringLiteral("nm")).unit, QString::fromUtf8("µm"));
        QCOMPARE(SiScale::forRange(5, 5, QStringLiteral("nm")).unit, QStringLiteral("nm"));
        QCOMPARE(SiScale::forRange(0, 0, QStringLiteral("nm")).unit, QStringLiteral("nm"));
    }

    void stepsAreOneTwoOrFive_data()
    {
        QTest::addColumn<double>("span");
        QTest::addColumn<int>("maxSteps");
        QTest::addColumn<double>("step");
        QTest::newRow("10 in 5") << 10.0 << 5 << 2.0;
        QTest::newRow("10 in 10") << 10.0 << 10 << 1.0;
        QTest::newRow("7 in 5") << 7.0 << 5 << 2.0;
        QTest::newRow("1.5 in 6") << 1.5 << 6 << 0.5;
        QTest::newRow("0.3 in 3, inexact") << 0.3 << 3 << 0.1;
        QTest::newRow("negative span") << -1000.0 << 4 << 500.0;
        QTest::newRow("tiny") << 3e-18 << 5 << 1e-18;
        QTest::newRow("huge") << 8e30 << 4 << 2e30;
        QTest::newRow("zero span") << 0.0 << 5 << 1.0;
        QTest::newRow("no steps") << 10.0 << 0 << 1.0;
    }

    void stepsAreOneTwoOrFive()
    {
        QFETCH(double, span);
        QFETCH(int, maxSteps);
        QFETCH(double, step);
        const double got = SiScale::niceStep(span, maxSteps);
        QVERIFY2(qAbs(got - step) <= 1e-12 * step, qPrintable(QString::number(got, 'g', 17)));
    }

    void floorIsOneTwoOrFive()
    {
        QCOMPARE(SiScale::niceFloor(1.5), 1.0);
        QCOMPARE(SiScale::niceFloor(4.99), 2.0);
        QCOMPARE(SiScale::niceFloor(5), 5.0);
        QCOMPARE(SiScale::niceFloor(0.3), 0.2);
        QCOMPARE(SiScale::niceFloor(999), 500.0);
        QCOMPARE(SiScale::niceFloor(1000), 1000.0);
    }

    void formatShowsTheDigitsTheStepNeeds()
    {
        QCOMPARE(SiScale::format(0.1 + 0.2, 0.1), QStringLiteral("0.3"));
        QCOMPARE(SiScale::format(-1e-17, 0.5), QStringLiteral("0.0"));
        QCOMPARE(SiScale::format(1500, 500), QStringLiteral("1500"));
        QCOMPARE(SiScale::format(-2.5, 0.5), QStringLiteral("-2.5"));
        QCOMPARE(SiScale::withUnit(1.5, 0.5, QString::fromUtf8("µm")), QString::fromUtf8("1.5 µm"));
        QCOMPARE(SiScale::withUnit(3, 1, QString()), QStringLiteral("3"));
    }
};

QTEST_GUILESS_MAIN(TestSiScale)
#include "tst_siscale.moc"
