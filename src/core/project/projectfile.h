#pragma once

#include <QString>

class Project;
class ProgressSink;

/**
 * A project on disk: a folder with one native item file per item and the manifest
 * "project.project.velm" (tabs, item files, positions, stacking order, selection, visibility),
 * written last and atomically so that a broken save never leaves a manifest pointing at missing files.
 */
class ProjectFile final {
public:
    static QString manifestName();
    /** Writes @p project into @p folder (made when missing); on success the project counts as saved there. */
    [[nodiscard]] static bool save(Project& project, const QString& folder, ProgressSink* progress, QString* message);
    /**
     * Replaces @p project's tabs by those stored in @p folder. Items that cannot be read are left out and
     * named in @p message; the result is false only when the manifest itself cannot be read.
     */
    [[nodiscard]] static bool load(Project& project, const QString& folder, ProgressSink* progress, QString* message);
};
