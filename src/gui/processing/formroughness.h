#pragma once

#include <QDialog>
#include <QPointer>
#include <QStringList>
#include <QVector>
#include <functional>

class QCheckBox;
class QSciImage;
class QTableWidget;

/**
 * The roughness parameters of the current item in a table; each evaluation is also written to the output page. The
 * radial power spectral density and autocorrelation open as plot windows.
 */
class FormRoughness final : public QDialog {
    Q_OBJECT

public:
    explicit FormRoughness(QWidget* parent = nullptr);

    /** Shows the dialog for @p item and evaluates it. */
    void showFor(QSciImage* item);
    void evaluate();
    /** The radially averaged power spectral density (@p psd) or autocorrelation of the item in a plot window. */
    void showRadialPlot(bool psd);
    /** The parameters of the last evaluation into a new table. */
    void addResultTable();

    /** Where tables go: rows with the header first, and a title. Without it the table button stays hidden. */
    std::function<void(const QVector<QStringList>& rows, const QString& title)> addTable;

signals:
    void outputRequested(const QString& html);
    void messageRequested(const QString& title, const QString& text);

private:
    QPointer<QSciImage> m_item;
    QCheckBox* m_masked;
    QTableWidget* m_table;
    QWidget* m_tableButton;
};
