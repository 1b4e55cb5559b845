#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>
#include <functional>

class FormChooseChannels;
class FormRawImport;
class QDialog;
class QSciImage;
class QWidget;

/**
 * Opens the files that are not native items: instrument files (asking which channels of a multi-channel file),
 * pictures, raw data (asking its layout) and ASCII matrices. Owns its dialogs for the window's whole run.
 */
class FileImport final : public QObject {
    Q_OBJECT

public:
    /** Runs a dialog modally and returns its result; the window passes its own runner so tests can fill it in. */
    using DialogRunner = std::function<int(QDialog*)>;

    explicit FileImport(QWidget* parent);

    /** The open dialog's filters: "All supported" first, then native, instrument, picture, raw and ASCII files. */
    static QString openFilter(const QString& nativeFilter);
    /** True for files these importers take (anything not native goes here). */
    static bool isRawOrAscii(const QString& path);

    /**
     * Reads @p path into new, unparented items; @p items stays empty when the user cancels a dialog. Fails with
     * the importer's message.
     */
    [[nodiscard]] bool read(const QString& path, const DialogRunner& run, QList<QSciImage*>* items, QString* message);

    /** Places @p items in a grid, left to right and top to bottom, starting at @p origin, @p gap points apart. */
    static void layOut(const QList<QSciImage*>& items, const QPoint& origin, int gap);

    FormChooseChannels* channelChooser() const { return m_chooseChannels; }
    FormRawImport* rawForm() const { return m_rawForm; }

private:
    FormChooseChannels* m_chooseChannels = nullptr;
    FormRawImport* m_rawForm = nullptr;
};
