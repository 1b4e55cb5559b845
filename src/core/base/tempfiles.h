#pragma once

#include <QString>

/** Clean-up of the temporary folder that child programs fill with working files. */
class TempFiles final {
public:
    /**
     * Removes every file directly in @p dir whose name starts with "ffmpeg" in any letter case
     * (frames and lists that movie import and export leave behind). Folders are left alone.
     * A missing @p dir is not an error. Returns the number of files removed.
     */
    static int removeFfmpegLeftovers(const QString& dir);
};
