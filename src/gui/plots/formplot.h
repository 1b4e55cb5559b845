#pragma once

#include "core/plots/plot2ddocument.h"

#include <QPair>
#include <QVector>
#include <QWidget>
#include <functional>

class QCustomPlot;
class QCPTextElement;
class QSciSimpleTableModel;
class QTabWidget;

/**
 * A 2D plot window: the curves of a plot document drawn with QCustomPlot, and a settings page with one control
 * per settings key (named after the key) that redraws as it changes. Saves the plot file, pictures (PNG, PDF,
 * SVG) and the curves as CSV; adds curves from table columns.
 */
class FormPlot final : public QWidget {
    Q_OBJECT

public:
    using TableList = QVector<QPair<QString, const QSciSimpleTableModel*>>;

    explicit FormPlot(QWidget* parent = nullptr);

    /** Opens a plot file in a new window; nullptr with the message box text when the file cannot be shown. */
    static FormPlot* open(const QString& path, QWidget* parent, QString* message);

    void setDocument(const Plot2dDocument& document);
    /** The settings as the controls show them, the curves, and the window's geometry. */
    Plot2dDocument document() const;
    /** Sets the ranges to the extent of the curves' finite values. */
    void rescale();
    void addCurve(const Plot2dCurve& curve);

    /** The tables FormAddPlot offers; without it the window cannot add curves. */
    std::function<TableList()> tables;
    /** What the window asks and tells; tests replace them. */
    std::function<QString(const QString& title, const QString& filter)> chooseSaveFile;
    std::function<void(const QString& title, const QString& text)> showMessage;

    [[nodiscard]] bool saveFile(const QString& path, QString* message);
    /** By the suffix: ".pdf", ".svg", else a raster format such as PNG. */
    [[nodiscard]] bool exportPicture(const QString& path, QString* message);
    [[nodiscard]] bool exportCsv(const QString& path, QString* message);

    QCustomPlot* plot() const { return m_plot; }

private:
    QWidget* buildSettingsPage();
    void readControls();
    void writeControls();
    void redraw();
    void saveAsked();
    void exportPictureAsked();
    void exportCsvAsked();
    void addPlotAsked();

    Plot2dDocument m_document;
    QCustomPlot* m_plot;
    QCPTextElement* m_title = nullptr;
    QTabWidget* m_tabs;
    bool m_updating = false;
};
