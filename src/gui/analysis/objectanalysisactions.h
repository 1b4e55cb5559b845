#pragma once

#include <QObject>

class FormImageProcessing;
class FormObjectProperties;
class MainActions;
class MainWindow;
class ObjectRecognitionPanel;
class QSciImage;

/**
 * The window's side of object analysis: the recognition page of the processing dialog, its menu entry, the
 * measures tables it writes after a run, "Object properties" and the object pixel exports. The main window
 * only creates this.
 */
class ObjectAnalysisActions final : public QObject {
    Q_OBJECT

public:
    ObjectAnalysisActions(MainWindow* window, MainActions* actions, FormImageProcessing* processing);

    ObjectRecognitionPanel* panel() const { return m_panel; }
    /** The object pixel exports: they act on the selected items, so the window enables them with a selection. */
    static QList<const char*> exportActions();
    FormObjectProperties* propertiesDialog() const { return m_properties; }

signals:
    void messageRequested(const QString& title, const QString& text);

private:
    void addMeasuresTables(const QList<QSciImage*>& items);
    void exportPixels(int pixels, int files);

    MainWindow* m_window;
    ObjectRecognitionPanel* m_panel;
    FormObjectProperties* m_properties;
};
