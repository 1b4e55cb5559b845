#pragma once

#include <QObject>
#include <QScriptable>
#include <QStringList>
#include <QVariantMap>

#include "core/items/qsciimage.h"

/**
 * What `new sciImage(...)` gives a script: a new blank item on the current tab. Every call is carried out by
 * the host on its own thread while the script waits. Changing calls need begin() first (and name and selection
 * calls begin() or beginMeta()); otherwise the script receives the thrown text
 * "Missing call to begin() before modifying image". The engine owns the object; when the script lets go of it,
 * the item leaves edit mode.
 */
class QSciScriptImage final : public QObject, protected QScriptable {
    Q_OBJECT

public:
    QSciScriptImage();
    ~QSciScriptImage() override;

    /** Asks the host for the new item; false when there is no run or it made none. */
    bool create();

public slots:
    bool saveToFile(const QString& path);
    bool loadFromFile(const QString& path);
    void select();
    void deselect();
    bool isSelected();
    void begin();
    void end();
    void beginMeta();
    QString getName();
    void mapImageToZ();
    void mapZToImage();
    void paint();
    /**
     * The effects return an empty text when applied, else the effect's message (nothing changed). Options of
     * derivative: mode ("gradient", "directional"), points, order, origin, border ("replicate", "wrap"),
     * direction ("xy", "x", "y"), angle, selection.
     */
    QString derivative(const QVariantMap& options = QVariantMap());
    QString denoise(double radius, int loops = 1, bool selection = false);
    /** Runs with the recognition options as the processing dialog last stored them; returns its message. */
    QString objectRecognition();

signals:
    void workImage(const QString& command, QSciImage* img, const QStringList& params = QStringList());

private:
    /** Sends @p command and waits for the host; false when the run is being stopped. */
    bool send(const QString& command, const QStringList& params = QStringList());
    /** Guard E (edit mode) or, with @p metaEnough, guard M; throws into the script when it fails. */
    bool guard(bool metaEnough);
    QString runEffect(const QString& command, const QStringList& params, bool messageWhenDone = false);

    QSciImage* m_item = nullptr;
    char m_metaBegun = 0;
    /** The item's edit mode as this object set it: the item itself belongs to the host's thread. */
    bool m_editing = false;
};
