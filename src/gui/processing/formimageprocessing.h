#pragma once

#include <QDialog>
#include <QList>
#include <QPointer>
#include <functional>

class EffectPanel;
class EffectPreview;
class PanelProgressSink;
class Project;
class QListWidget;
class QProgressBar;
class QPushButton;
class QSciImage;
class QStackedWidget;

/**
 * The image-processing dialog: a list of effects, the options panel of the chosen one, a live preview of the
 * current item, and Apply with a progress bar and Stop. Apply runs the effect on the selected items as one
 * history transaction named after the effect. Further effects join as panels through addPanel().
 */
class FormImageProcessing final : public QDialog {
    Q_OBJECT

public:
    explicit FormImageProcessing(QWidget* parent = nullptr);
    ~FormImageProcessing() override;

    /** Where Apply finds the items: the project and the selected items in list order. */
    void setProject(Project* project, std::function<QList<QSciImage*>()> selectedItems);
    /** The item the preview shows. */
    void setCurrentItem(QSciImage* item);

    /** Adds an effect page under its effect's name; returns its index. */
    int addPanel(EffectPanel* panel);
    /** Shows the dialog at the page of that object name ("DerivativePanel"); an unknown name keeps the page. */
    void showPanel(const QString& objectName);
    /** Shows the filters' page with the filter of that number (QSciFilter::Kind) chosen. */
    void showFilter(int kind);
    EffectPanel* currentPanel() const;
    EffectPreview* preview() const { return m_preview; }
    bool isRunning() const { return m_sink != nullptr; }

public slots:
    void apply();
    void stop();

signals:
    /** A message for the user, shown by the window as all its messages are. */
    void messageRequested(const QString& title, const QString& text);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void selectPanel(int index);
    void updatePreview();

    Project* m_project = nullptr;
    std::function<QList<QSciImage*>()> m_selectedItems;
    QPointer<QSciImage> m_currentItem;
    QList<EffectPanel*> m_panels;
    QListWidget* m_list;
    QStackedWidget* m_pages;
    EffectPreview* m_preview;
    QProgressBar* m_progress;
    QPushButton* m_apply;
    QPushButton* m_stop;
    PanelProgressSink* m_sink = nullptr;
};
