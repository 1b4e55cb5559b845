#pragma once

#include <QDialog>

/** The "Info" dialog: the program's version, the versions of the libraries it runs on, and their licences. */
class FormInfo final : public QDialog {
    Q_OBJECT

public:
    explicit FormInfo(QWidget* parent = nullptr);

    /** The dialog's text as HTML, for the dialog and for anyone who wants to report it. */
    static QString infoHtml();
};
