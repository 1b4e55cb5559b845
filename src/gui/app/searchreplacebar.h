#pragma once

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QPushButton;

/**
 * The search-and-replace strip shared by the scripts, tables and texts pages. The buttons wait for
 * those pages and stay disabled until one of them takes the strip over.
 */
class SearchReplaceBar final : public QWidget {
    Q_OBJECT

public:
    explicit SearchReplaceBar(QWidget* parent = nullptr);

    QLineEdit* searchText() const { return m_search; }
    QLineEdit* replaceText() const { return m_replace; }
    QCheckBox* caseSensitive() const { return m_caseSensitive; }

private:
    QLineEdit* m_search;
    QLineEdit* m_replace;
    QCheckBox* m_caseSensitive;
};
