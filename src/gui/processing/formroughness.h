#pragma once

#include <QDialog>
#include <QPointer>

class QCheckBox;
class QSciImage;
class QTableWidget;

/** The roughness parameters of the current item in a table; each evaluation is also written to the output page. */
class FormRoughness final : public QDialog {
    Q_OBJECT

public:
    explicit FormRoughness(QWidget* parent = nullptr);

    /** Shows the dialog for @p item and evaluates it. */
    void showFor(QSciImage* item);
    void evaluate();

signals:
    void outputRequested(const QString& html);
    void messageRequested(const QString& title, const QString& text);

private:
    QPointer<QSciImage> m_item;
    QCheckBox* m_masked;
    QTableWidget* m_table;
};
