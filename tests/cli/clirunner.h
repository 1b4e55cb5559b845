#pragma once

#include <QByteArray>
#include <QStringList>

/** Runs velmora-cli with a private settings folder and collects what it printed. */
struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliResult runCli(const QString& settingsDir, const QStringList& args, const QByteArray& input = QByteArray());
