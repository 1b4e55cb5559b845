#pragma once

#include <QDialog>

class QTextBrowser;

/**
 * The help window: the program's own short pages ("Index.html", "Componentlist.html", "Defaultcursor.html",
 * "Outputpage.html", "Colorgradient.html"), with back, forward and home. Made once by the main window and
 * shown without blocking it.
 */
class HelpBrowser final : public QDialog {
    Q_OBJECT

public:
    explicit HelpBrowser(QWidget* parent = nullptr);

    /** Shows and raises the window at page @p name; an unknown name shows the index. */
    void showPage(const QString& name);
    /** The page shown, by its name. */
    QString currentPage() const;
    /** Every page there is, by name. */
    static QStringList pages();

private:
    QTextBrowser* m_text;
};
