#pragma once

#include <QDialog>
#include <QList>

class NumberField;
class QLabel;
class QPushButton;
class QSciImage;

/**
 * "Recalibrate z-matrix": asks for the two numbers of z' = z * multiply + add and shows, while they are
 * typed, the current z range of the chosen items and the range they would get. The two numbers stay as
 * last typed for the next use; OK is disabled while either does not read as a number.
 */
class FormRecalibrateZ final : public QDialog {
    Q_OBJECT

public:
    explicit FormRecalibrateZ(QWidget* parent = nullptr);

    /** Shows the z range over all @p items (their own matrices are only read). */
    void setItems(const QList<QSciImage*>& items);
    void setZRange(double zMin, double zMax);

    double multiply() const;
    double add() const;
    /** The range the items would get, lower end first. */
    void resultingRange(double* zMin, double* zMax) const;

private:
    void updateResult();

    NumberField* m_multiply;
    NumberField* m_add;
    QLabel* m_current;
    QLabel* m_result;
    QPushButton* m_ok = nullptr;
    double m_zMin = 0;
    double m_zMax = 0;
    bool m_hasRange = false;
};
