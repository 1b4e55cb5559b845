#pragma once

#include <QList>
#include <QString>
#include <memory>
#include <vector>

class Project;
class QSciImage;

/**
 * "Compose image parts" joins items into one by their physical offsets (scans of neighbouring areas, say);
 * "Recompose images" cuts a composed item back into its parts, as they are now. The composed item remembers
 * where each part lies in its header ("composedPart" entries), so the parts survive saving and loading.
 *
 * The parts must share their point spacing and units, so no point is resampled. Where parts overlap, the later
 * one in the list wins; points no part covers take the lowest z of all parts and are selected in the mask, so
 * they can be seen and corrected.
 */
class ImageComposition final {
public:
    static std::unique_ptr<QSciImage> compose(const QList<const QSciImage*>& parts, QString* message = nullptr);
    static std::vector<std::unique_ptr<QSciImage>> recompose(const QSciImage& composed, QString* message = nullptr);

    /** The composed item beside the last part, one history step; null with the message when the parts do not fit. */
    static QSciImage* composeInto(Project& project, const QList<QSciImage*>& parts, QString* message = nullptr);
    /** The parts of @p composed beside it, one history step; empty with the message when it was not composed. */
    static QList<QSciImage*> recomposeInto(Project& project, QSciImage* composed, QString* message = nullptr);

    static QString headerKey() { return QStringLiteral("composedPart"); }
};
