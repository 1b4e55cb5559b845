#pragma once

#include <QColor>
#include <QDialog>

class QPushButton;
class QSpinBox;

/**
 * Asks for the size and background colour of a new blank item ("Item (blank)..."). The values of the last
 * accepted use are remembered under `FormNewImage.*` and offered again.
 */
class FormNewImage final : public QDialog {
    Q_OBJECT

public:
    /** 16000 x 16000 points still fit one item (QSciImage::MaxPoints). */
    static constexpr int MaximumSide = 16000;

    explicit FormNewImage(QWidget* parent = nullptr);

    // The item's size in data points. These hide QWidget::width()/height() on purpose, as the window's
    // callers expect; the dialog's own geometry stays reachable through size().
    int width() const;
    int height() const;
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

public slots:
    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void loadSettings();
    void chooseColor();

    QSpinBox* m_width;
    QSpinBox* m_height;
    QPushButton* m_colorButton;
    QColor m_color = Qt::white;
};
