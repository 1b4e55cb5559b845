#pragma once

#include <QDockWidget>
#include <QHash>
#include <QIcon>
#include <QList>
#include <QPointer>

class Project;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QRadioButton;
class QSciImage;

/**
 * The "Components" dock: the item list, one row per item with thumbnail, name and visibility check box,
 * for the active tab or all tabs, filtered by name. Rows mirror the items: their selection, visibility,
 * name and picture follow the items' signals. The window turns the user's edits of rows into operations.
 */
class ComponentsDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit ComponentsDock(QWidget* parent = nullptr);

    void setProject(Project* project);

    QListWidget* imageList() const { return m_list; }
    QRadioButton* onlyActiveTab() const { return m_onlyActiveTab; }
    QRadioButton* fromAllTabs() const { return m_fromAllTabs; }
    QLineEdit* filter() const { return m_filter; }

    /** True while the list shows the current tab's items only. */
    bool usesOnlyActiveTab() const;
    /** The items that have a row, in list order. */
    QList<QSciImage*> listedItems() const;
    QSciImage* itemOf(const QListWidgetItem* row) const;
    QListWidgetItem* rowOf(const QSciImage* item) const { return m_rows.value(item); }

    /** Gives every listed item the selection state of its row. */
    void applyListSelection();

public slots:
    /** Rebuilds the rows from the project. */
    void refresh();

signals:
    void contextMenuRequested(const QPoint& globalPos);
    /** Which items the list shows changed (scope, filter or the items themselves). */
    void listChanged();
    /** Some item of the project changed its selection, visibility or place. */
    void itemStateChanged();

private:
    void watchTab(QObject* tab);
    void updateRow(QSciImage* item);
    void fillRow(QListWidgetItem* row, QSciImage* item);
    QIcon thumbnail(QSciImage* item);

    QPointer<Project> m_project;
    QListWidget* m_list;
    QRadioButton* m_onlyActiveTab;
    QRadioButton* m_fromAllTabs;
    QLineEdit* m_filter;
    QHash<const QSciImage*, QListWidgetItem*> m_rows;
    QList<QPointer<QSciImage>> m_watched;
    /** By serial: a pointer may be reused by a later item. */
    QHash<quint64, QIcon> m_thumbnails;
};
