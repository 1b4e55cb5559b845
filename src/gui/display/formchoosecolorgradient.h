#pragma once

#include "core/display/colorgradient.h"

#include <QDialog>
#include <QPointer>
#include <QVector>

#include <memory>

class QAbstractButton;
class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSciImage;
class QSpinBox;
class QTimer;
class QToolButton;

/**
 * The colour gradient editor: eight colour stops, the repeat count, the built-in gradients, twelve
 * "My gradients" slots kept in the settings, and a preview of one item coloured with the edited gradient.
 * The dialog never changes an item: the caller applies gradient() after exec() returned Accepted.
 * Each show loads the gradient last accepted (`FormChooseColorGradient.gradient`).
 */
class FormChooseColorGradient final : public QDialog {
    Q_OBJECT
    Q_PROPERTY(QString helpPage READ helpPage CONSTANT)

public:
    static constexpr int StopCount = 8;
    static constexpr int MyGradientCount = 12;
    static constexpr int UpdateIntervalMs = 150;

    explicit FormChooseColorGradient(QWidget* parent = nullptr);
    ~FormChooseColorGradient() override;

    /**
     * The item the preview shows; it is only read, and may be null (empty preview). Shown for an item, the
     * dialog opens with that item's gradient; without one, with the last applied gradient.
     */
    void setPreviewItem(const QSciImage* item);
    /** Shows or hides "Apply global plane correction for preview"; a hidden box applies no correction. */
    void setPlaneCorrectionOptionVisible(bool visible);

    /** The gradient the eight rows and the repeat field describe. */
    ColorGradient gradient() const;
    /** Loads @p gradient into the rows (eight slots: missing ones are padded inactive, extra ones dropped). */
    void setGradient(const ColorGradient& gradient);

    bool isSaveMode() const { return m_saveMode; }
    /** The picture the preview shows now, unscaled (null without a preview item). */
    QImage previewPicture() const { return m_previewPicture; }
    QString helpPage() const { return QStringLiteral("Colorgradient.html"); }

    /** The stored "My gradients" slot @p number (1 to MyGradientCount). */
    static ColorGradient myGradient(int number);
    static QString myGradientKey(int number);

public slots:
    void accept() override;
    void reject() override;
    /** Stops the update timer and refreshes the preview when the gradient changed since the last refresh. */
    void updateTimerTimeout();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildForm();
    QWidget* buildColorsGroup();
    QWidget* buildBuiltInRow();
    QWidget* buildMyGradientsGroup();
    QWidget* buildPreviewGroup();
    void edited();
    void showStop(int slot);
    void chooseColor(int slot);
    void builtInClicked(int number);
    void myGradientClicked(int number);
    void setSaveMode(bool on);
    void refreshMyGradientIcon(int number);
    void planeCorrectionToggled(bool on);
    /** Rebuilds the copy the preview colours: taken from the item, plane-corrected when asked. */
    void rebuildPreviewBase();
    void showPreviewPicture();

    QVector<GradientStop> m_stops;
    QVector<QCheckBox*> m_useColor;
    QVector<QPushButton*> m_colorButtons;
    QVector<QDoubleSpinBox*> m_positions;
    QVector<QToolButton*> m_myGradientButtons;
    QSpinBox* m_repeat = nullptr;
    QPushButton* m_saveAsMyGradient = nullptr;
    QLabel* m_saveHint = nullptr;
    QCheckBox* m_planeCorrection = nullptr;
    QLabel* m_preview = nullptr;
    QTimer* m_updateTimer = nullptr;
    bool m_saveMode = false;
    bool m_loading = false;

    QPointer<const QSciImage> m_previewItem;
    std::unique_ptr<QSciImage> m_previewCopy;
    QString m_lastPreviewText;
    QImage m_previewPicture;
};
