#pragma once

#include <QDialog>
#include <QPointer>

class Project;
class QSciImage;
class QTableWidget;
class QTextBrowser;

/**
 * "Object properties": the objects of one item in a list where each can be shown or hidden, and every measure of
 * the chosen one. Showing and hiding is one undo step each; the list follows changes of the item.
 */
class FormObjectProperties final : public QDialog {
    Q_OBJECT

public:
    explicit FormObjectProperties(QWidget* parent = nullptr);

    void setProject(Project* project) { m_project = project; }
    void setItem(QSciImage* item);
    QSciImage* item() const { return m_item; }
    QTableWidget* list() const { return m_list; }
    /** Shows or hides the objects of rows @p rows (all when empty) in one undo step. */
    void setObjectsVisible(const QList<int>& rows, bool visible);

signals:
    void measuresRequested(const QList<QSciImage*>& items);

private:
    void refresh();
    void showDetails();
    void onCellChanged(int row, int column);

    Project* m_project = nullptr;
    QPointer<QSciImage> m_item;
    QTableWidget* m_list;
    QTextBrowser* m_details;
    bool m_filling = false;
};
