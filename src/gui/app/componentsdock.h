#pragma once

#include <QDockWidget>

class QLineEdit;
class QListWidget;
class QRadioButton;

/**
 * The "Components" dock: the item list, the choice between the active tab's items and all items,
 * and the name filter. The list is filled by the project; the choice and filter stay disabled until
 * it does.
 */
class ComponentsDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit ComponentsDock(QWidget* parent = nullptr);

    QListWidget* imageList() const { return m_list; }
    QRadioButton* onlyActiveTab() const { return m_onlyActiveTab; }
    QRadioButton* fromAllTabs() const { return m_fromAllTabs; }
    QLineEdit* filter() const { return m_filter; }

signals:
    void contextMenuRequested(const QPoint& globalPos);

private:
    QListWidget* m_list;
    QRadioButton* m_onlyActiveTab;
    QRadioButton* m_fromAllTabs;
    QLineEdit* m_filter;
};
