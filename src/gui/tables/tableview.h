#pragma once

#include <QPair>
#include <QSet>
#include <QTableView>
#include <memory>

class QSciSimpleTableModel;

/**
 * One table page: a view that owns its model. Because a table never changes size, reshaping hands the view a
 * new model. Copy and paste speak the tab-separated text of spreadsheets.
 */
class TableView final : public QTableView {
    Q_OBJECT

public:
    explicit TableView(std::unique_ptr<QSciSimpleTableModel> model, QWidget* parent = nullptr);

    QSciSimpleTableModel* table() const { return m_table; }
    /** Replaces the model, keeping the current cell where it still exists. */
    void setTable(std::unique_ptr<QSciSimpleTableModel> model);

    QString title() const { return m_title; }
    void setTitle(const QString& title) { m_title = title; }
    QString filePath() const { return m_filePath; }
    void setFilePath(const QString& path) { m_filePath = path; }

    QSet<QPair<int, int>> selectedCells() const;
    /** Sorted, distinct rows (or columns) that hold a selected cell; the current one when nothing is selected. */
    QList<int> selectedRows() const;
    QList<int> selectedColumns() const;

    /** The bounding block of the selection as tab-separated text; empty cells stay as empty fields. */
    QString selectionText() const;
    /** Writes a block of text from the current cell on, growing the table when it does not fit. */
    void pasteText(const QString& text);
    void clearSelectedCells();

    void copyToClipboard() const;
    void pasteFromClipboard();

signals:
    void tableReplaced();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QSciSimpleTableModel* m_table = nullptr;
    QString m_title;
    QString m_filePath;
};
