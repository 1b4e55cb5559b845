#include "../support/scopedsettings.h"
#include <memory>

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <cmath>

#include "core/display/colorgradient.h"
#include "core/items/qsciimage.h"
#include "core/processing/syntheticfield.h"
#include "core/settings/options.h"
#include "gui/display/formchoosecolorgradient.h"

namespace {

template <typename T> T* child(const QObject& parent, const QString& name)
{
    T* found = parent.findChild<T*>(name);
    if (!found)
        qWarning("no child %s", qPrintable(name));
    return found;
}

QAbstractButton* button(const QObject& parent, const char* stem, int number)
{
    return child<QAbstractButton>(parent, QLatin1String(stem) + QString::number(number));
}

/** A tilted synthetic field: the plane dominates, so the plane correction visibly changes the preview. */
std::unique_ptr<QSciImage> makeItem(int w = 96, int h = 64)
{
    auto item = std::make_unique<QSciImage>(w, h, Qt::white);
    SyntheticField::Parameters p;
    p.width = w;
    p.height = h;
    const QVector<double> field = SyntheticField::generate(p);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            item->setZ(x, y, field[qsizetype(x) * h + y] + 0.5 * x);
    item->mapZToPicture();
    return item;
}

QString stored(const QString& key)
{
    return Options::getString(key, QString());
}

} // namespace

class TestFormChooseColorGradient : public QObject {
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

    void builtInButtonLoadsExactlyThatGradient_data()
    {
        QTest::addColumn<int>("number");
        for (int n = 1; n <= 16; ++n)
            QTest::addRow("%d", n) << n;
    }

    void builtInButtonLoadsExactlyThatGradient()
    {
        QFETCH(int, number);
        FormChooseColorGradient dialog;
        dialog.show();
        button(dialog, "pbBuiltIn", number)->click();
        QCOMPARE(dialog.gradient().toString(), ColorGradient::builtIn(number).toString());
    }

    void opensWithTheStoredGradientAndAcceptStoresIt()
    {
        Options::setString(QStringLiteral("FormChooseColorGradient.gradient"), ColorGradient::builtIn(7).toString());
        FormChooseColorGradient dialog;
        dialog.show();
        QCOMPARE(dialog.gradient(), ColorGradient::builtIn(7));
        QVERIFY(child<QCheckBox>(dialog, "cbUseColor2")->isChecked());
        QCOMPARE(child<QDoubleSpinBox>(dialog, "dsbPosition2")->value(), 25.0);

        child<QSpinBox>(dialog, "sbRepeat")->setValue(3);
        child<QCheckBox>(dialog, "cbUseColor4")->setChecked(true);
        child<QPushButton>(dialog, "pbOk")->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        ColorGradient expected = ColorGradient::builtIn(7);
        QVector<GradientStop> stops = expected.stops();
        stops[3].active = true;
        expected.setStops(stops);
        expected.setRepeat(3);
        QCOMPARE(stored(QStringLiteral("FormChooseColorGradient.gradient")), expected.toString());

        // Cancel keeps the stored one; the next opening starts from it again.
        dialog.show();
        QCOMPARE(dialog.gradient(), expected);
        button(dialog, "pbBuiltIn", 2)->click();
        child<QPushButton>(dialog, "pbCancel")->click();
        QCOMPARE(stored(QStringLiteral("FormChooseColorGradient.gradient")), expected.toString());
    }

    void defaultsLoadsTheDefaultGradient()
    {
        FormChooseColorGradient dialog;
        dialog.show();
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Color gradient"));
        button(dialog, "pbBuiltIn", 13)->click();
        child<QPushButton>(dialog, "pbDefaults")->click();
        QCOMPARE(dialog.gradient().toString(), ColorGradient().toString());
        QVERIFY(dialog.isVisible());
    }

    void saveModeStoresIntoTheClickedSlotOnly()
    {
        FormChooseColorGradient dialog;
        dialog.show();
        QAbstractButton* slot5 = button(dialog, "pbMyGradient", 5);
        const qint64 emptyIcon = slot5->icon().pixmap(16, 50).toImage().cacheKey();
        auto* hint = child<QLabel>(dialog, "lbSaveHint");
        QVERIFY(!hint->isVisible());

        button(dialog, "pbBuiltIn", 3)->click();
        child<QPushButton>(dialog, "pbSaveAsMyGradient")->click();
        QVERIFY(dialog.isSaveMode());
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->text(),
            QStringLiteral("Click on a gradient to save the settings or click on \"save as my gradient\" to abort."));
        slot5->click();
        QVERIFY(!dialog.isSaveMode());
        QVERIFY(!hint->isVisible());
        QCOMPARE(stored(FormChooseColorGradient::myGradientKey(5)), ColorGradient::builtIn(3).toString());
        QVERIFY(slot5->icon().pixmap(16, 50).toImage()
            != button(dialog, "pbMyGradient", 6)->icon().pixmap(16, 50).toImage());
        Q_UNUSED(emptyIcon)
        for (int n = 1; n <= FormChooseColorGradient::MyGradientCount; ++n) {
            if (n != 5)
                QVERIFY(stored(FormChooseColorGradient::myGradientKey(n)).isEmpty());
        }

        // Outside save mode a slot click loads it; a second "Save as" click aborts without storing.
        button(dialog, "pbBuiltIn", 16)->click();
        child<QPushButton>(dialog, "pbSaveAsMyGradient")->click();
        child<QPushButton>(dialog, "pbSaveAsMyGradient")->click();
        QVERIFY(!dialog.isSaveMode());
        slot5->click();
        QCOMPARE(dialog.gradient(), ColorGradient::builtIn(3));
        button(dialog, "pbMyGradient", 6)->click();
        QCOMPARE(dialog.gradient(), ColorGradient());
        QCOMPARE(stored(FormChooseColorGradient::myGradientKey(5)), ColorGradient::builtIn(3).toString());
    }

    void previewColoursACopyAndNeverTheItem()
    {
        const std::unique_ptr<QSciImage> item = makeItem();
        const QImage picture = item->picture().copy();
        const QVector<double> z = item->zMatrix();
        const QString gradient = item->colorGradient().toString();

        FormChooseColorGradient dialog;
        child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->setChecked(false);
        dialog.setPreviewItem(item.get());
        dialog.show();
        button(dialog, "pbBuiltIn", 13)->click();
        QTRY_COMPARE(dialog.gradient().toString(), ColorGradient::builtIn(13).toString());
        QTimer* timer = child<QTimer>(dialog, "updateTimer");
        QTRY_VERIFY(!timer->isActive());

        std::unique_ptr<QSciImage> expected(item->duplicate());
        expected->setColorGradient(ColorGradient::builtIn(13));
        expected->mapZToPicture();
        QCOMPARE(dialog.previewPicture(), expected->picture());

        // With the correction the tilt is gone, so the picture differs from the uncorrected one.
        child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->setChecked(true);
        QVERIFY(Options::getBool(QStringLiteral("FormChooseColorGradient.globalPlaneCorrection"), false));
        QVERIFY(dialog.previewPicture() != expected->picture());
        QCOMPARE(dialog.previewPicture().size(), item->size());

        child<QPushButton>(dialog, "pbOk")->click();
        QCOMPARE(item->picture(), picture);
        QCOMPARE(item->zMatrix(), z);
        QCOMPARE(item->colorGradient().toString(), gradient);
    }

    void editsWaitForTheTimerAndEqualTextsDoNotRefresh()
    {
        const std::unique_ptr<QSciImage> item = makeItem(20, 30);
        FormChooseColorGradient dialog;
        dialog.setPreviewItem(item.get());
        dialog.show();
        QTimer* timer = child<QTimer>(dialog, "updateTimer");
        const qint64 before = dialog.previewPicture().cacheKey();

        child<QDoubleSpinBox>(dialog, "dsbPosition8")->setValue(60);
        QVERIFY(timer->isActive());
        QCOMPARE(dialog.previewPicture().cacheKey(), before);
        dialog.updateTimerTimeout();
        QVERIFY(!timer->isActive());
        const qint64 after = dialog.previewPicture().cacheKey();
        QVERIFY(after != before);

        // Toggling a slot off and on again ends at the same text: no new picture.
        child<QCheckBox>(dialog, "cbUseColor1")->setChecked(false);
        child<QCheckBox>(dialog, "cbUseColor1")->setChecked(true);
        dialog.updateTimerTimeout();
        QCOMPARE(dialog.previewPicture().cacheKey(), after);
    }

    void planeCorrectionStateIsRemembered()
    {
        {
            FormChooseColorGradient dialog;
            dialog.show();
            QVERIFY(child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->isChecked());
            child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->setChecked(false);
        }
        FormChooseColorGradient dialog;
        dialog.show();
        QVERIFY(!child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->isChecked());
    }

    // Not a test: with VELMORA_SCREENSHOT_DIR set, writes a picture of the dialog over a synthetic item.
    void screenshot()
    {
        const QString dir = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR");
        if (dir.isEmpty())
            QSKIP("VELMORA_SCREENSHOT_DIR not set");
        // Smooth hills on a strong tilt, without the synthetic field's spikes, so the whole ramp shows.
        auto item = std::make_unique<QSciImage>(256, 192, Qt::white);
        for (int x = 0; x < item->width(); ++x)
            for (int y = 0; y < item->height(); ++y)
                item->setZ(x, y, std::sin(x / 17.0) * std::cos(y / 13.0) + 0.04 * x + 0.02 * y);
        Options::setString(FormChooseColorGradient::myGradientKey(1), ColorGradient::builtIn(13).toString());
        Options::setString(FormChooseColorGradient::myGradientKey(2), ColorGradient::builtIn(4).toString());
        FormChooseColorGradient dialog;
        dialog.setPreviewItem(item.get());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        button(dialog, "pbBuiltIn", 3)->click();
        child<QPushButton>(dialog, "pbSaveAsMyGradient")->click();
        QTRY_VERIFY(!child<QTimer>(dialog, "updateTimer")->isActive());
        QTest::qWait(200);
        QVERIFY(dialog.grab().save(dir + QStringLiteral("/formchoosecolorgradient.png")));
        child<QPushButton>(dialog, "pbSaveAsMyGradient")->click();
        child<QCheckBox>(dialog, "cbGlobalPlaneCorrection")->setChecked(false);
        button(dialog, "pbBuiltIn", 13)->click();
        QTRY_VERIFY(!child<QTimer>(dialog, "updateTimer")->isActive());
        QVERIFY(dialog.grab().save(dir + QStringLiteral("/formchoosecolorgradient-tilted.png")));
    }
};

QTEST_MAIN(TestFormChooseColorGradient)
#include "tst_formchoosecolorgradient.moc"
