#pragma once

#include "core/plots/plot2ddocument.h"

#include <QDialog>
#include <QPair>
#include <QVector>

class QComboBox;
class QLineEdit;
class QListWidget;
class QSciSimpleTableModel;

/** Chooses a table, its x column and one or more y columns; each y column becomes a curve. */
class FormAddPlot final : public QDialog {
    Q_OBJECT

public:
    using TableList = QVector<QPair<QString, const QSciSimpleTableModel*>>;

    explicit FormAddPlot(const TableList& tables, QWidget* parent = nullptr);

    /** The curves of the current choice: rows whose x and y cells both hold numbers. */
    QVector<Plot2dCurve> curves() const;

    /** Builds the curves of @p table's columns; columns are counted from 0. */
    static QVector<Plot2dCurve> curvesOf(const QSciSimpleTableModel& table, const QString& tableTitle, int xColumn,
        const QList<int>& yColumns, const QString& name = QString());

private:
    void fillColumns();

    TableList m_tables;
    QComboBox* m_table;
    QComboBox* m_x;
    QListWidget* m_y;
    QLineEdit* m_name;
};
