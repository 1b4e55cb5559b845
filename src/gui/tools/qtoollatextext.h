#pragma once

#include "qtool.h"

#include <QImage>

class LatexRenderer;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTimer;

/**
 * Places a formula typed in LaTeX math syntax onto the picture: the panel renders it as it is typed, a drag
 * moves it over the item and the release draws it there, its top-left corner at the release, in one
 * history step. The formula's source joins the item's text lines (as $...$), which "LaTeX-Codes" exports.
 */
class QToolLatexText final : public QTool {
    Q_OBJECT

public:
    explicit QToolLatexText(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    QString formula() const;
    void setFormula(const QString& formula);
    /** The rendered formula; null while rendering or after a failure. */
    const QImage& renderedImage() const { return m_image; }
    /** Renders now instead of after the typing pause. */
    void renderNow();

signals:
    /** A rendering attempt ended, with an image or with the panel showing why not. */
    void renderingFinished(bool ok);

protected:
    bool previewsOverPicture() const override { return true; }
    void drawPreview(QPainter& painter) override;

private:
    void onRendered(const QString& formula, const QImage& image);
    void onFailed(const QString& formula, const QString& message);

    LatexRenderer* m_renderer = nullptr;
    QLineEdit* m_formula;
    QSpinBox* m_size;
    QLabel* m_preview;
    QLabel* m_status;
    QTimer* m_delay;
    QImage m_image;
    QPoint m_at;
};
