#pragma once

#include <QDialog>
#include <QSize>

class QCheckBox;
class QLabel;
class QSpinBox;

/** How imported movie frames are sized: as they are, or scaled to a width and height (aspect kept on request). */
class FormAviImportScalingDialog final : public QDialog {
    Q_OBJECT

public:
    explicit FormAviImportScalingDialog(QWidget* parent = nullptr);

    /** The frames' own size, which the fields start from and the aspect ratio follows. */
    void setOriginalSize(const QSize& size);
    /** The size to scale to; invalid when the frames keep their own. */
    QSize scaleTo() const;
    /** "as in the movie" or "scaled to W x H", for the import dialog. */
    QString summary() const;

private:
    void widthEdited(int width);
    void heightEdited(int height);

    QCheckBox* m_scale;
    QSpinBox* m_width;
    QSpinBox* m_height;
    QCheckBox* m_keepAspect;
    QSize m_original { 1, 1 };
    bool m_updating = false;
};
