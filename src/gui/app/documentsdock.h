#pragma once

#include <QDockWidget>

class OutputPage;
class QCheckBox;
class QSpinBox;
class QTabWidget;
class SearchReplaceBar;

/**
 * The "Documents" dock: the pages "Output", "Scripts", "Tables" and "Texts" and the search-and-replace
 * strip under them. The Tables page holds the size of new tables and the formula-scope check box.
 */
class DocumentsDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit DocumentsDock(QWidget* parent = nullptr);

    QTabWidget* pages() const { return m_pages; }
    OutputPage* outputPage() const { return m_output; }
    QWidget* scriptsPage() const { return m_scripts; }
    QWidget* tablesPage() const { return m_tables; }
    QWidget* textsPage() const { return m_texts; }
    /** Puts @p content on @p page where the page keeps a stretch for it, taking all the page's room. */
    static void fillPage(QWidget* page, QWidget* content);
    SearchReplaceBar* searchBar() const { return m_search; }

    QSpinBox* tableRowCount() const { return m_rowCount; }
    QSpinBox* tableColCount() const { return m_colCount; }
    QCheckBox* onlySelectedCells() const { return m_onlySelectedCells; }

private:
    QWidget* buildTablesPage();
    QWidget* buildPlainPage(const char* objectName, const char* helpPage);

    QTabWidget* m_pages;
    OutputPage* m_output;
    QWidget* m_scripts;
    QWidget* m_tables;
    QWidget* m_texts;
    SearchReplaceBar* m_search;
    QSpinBox* m_rowCount = nullptr;
    QSpinBox* m_colCount = nullptr;
    QCheckBox* m_onlySelectedCells = nullptr;
};
