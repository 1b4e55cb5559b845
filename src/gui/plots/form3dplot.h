#pragma once

#include "core/plots/plot3ddocument.h"

#include <QMap>
#include <QWidget>
#include <functional>

class PlotWebView;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;
class QTimer;

/**
 * The 3D surface window: the z-matrix of an item (or of a 3D plot file) drawn by the surface page in a web view,
 * with the settings that shape the page. Settings are remembered under `form3dPlot.` keys; the page is rebuilt
 * when they change and when the window was resized and then left alone for a moment.
 */
class Form3dPlot final : public QWidget {
    Q_OBJECT

public:
    /** The largest picture side "Save 3D plot to file" accepts. */
    static constexpr int MaxSaveSide = 10000;

    /** With @p remembered the `form3dPlot.` settings of the last window replace the document's own. */
    explicit Form3dPlot(const Plot3dDocument& document, QWidget* parent = nullptr, bool remembered = true);
    static Form3dPlot* open(const QString& path, QWidget* parent, QString* message);

    Plot3dDocument document() const;
    PlotWebView* view() const { return m_view; }

    /** What the window asks and tells; tests replace them. */
    std::function<QString(const QString& title, const QString& filter)> chooseSaveFile;
    std::function<void(const QString& title, const QString& text)> showMessage;

    /** By the suffix: ".pdf", else a picture format (PNG, JPEG) of the save size. */
    [[nodiscard]] bool savePicture(const QString& path, QString* message);
    [[nodiscard]] bool saveFile(const QString& path, QString* message);
    /** Rebuilds the page from the settings at the view's size. */
    void updatePage();

public slots:
    void onWebViewResize();
    void resizeTimerTimeout();

private:
    QWidget* buildPanel();
    void readControls();
    void writeControls();
    void storeSettings() const;
    void restoreSettings();
    void savePictureAsked();
    void saveFileAsked();
    /** The page's current angles, so that a rebuild keeps what the mouse turned. */
    void takeAngles();

    Plot3dDocument m_document;
    PlotWebView* m_view;
    QTimer* m_resizeTimer;
    QLineEdit* m_title;
    QLineEdit* m_axisTitles[3];
    QCheckBox* m_webGL;
    QCheckBox* m_natural;
    QCheckBox* m_komma;
    QComboBox* m_render;
    QSpinBox* m_precision;
    QCheckBox* m_autoPrecision;
    QSpinBox* m_fontSize;
    QComboBox* m_fontStyle;
    /** Check boxes and spin boxes that each show one settings key, by key. */
    QMap<QString, QCheckBox*> m_flagBoxes;
    QMap<QString, QSpinBox*> m_numberBoxes;
    QSpinBox* m_saveWidth;
    QSpinBox* m_saveHeight;
    bool m_updating = false;
};
