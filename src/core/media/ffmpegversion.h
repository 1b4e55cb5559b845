#pragma once

#include <QString>

/** The check that the ffmpeg found is new enough, run before movies are imported or exported. */
class FfmpegVersion final {
public:
    /** Builds up to this year are refused. */
    static constexpr int LastRefusedYear = 2012;

    enum class Status { Passed, Missing, CannotRun, TooOld };

    struct Result {
        Status status = Status::Passed;
        int year = 0; ///< 0 when the output named none
        QString title; ///< for the message box; empty when passed
        QString message;
        bool passed() const { return status == Status::Passed; }
    };

    /**
     * The build year in the output of "ffmpeg -version": the year after "built on ", or, for builds that print
     * no such line, the last year of "Copyright (c) 2000-YYYY". 0 when neither is there.
     */
    static int buildYear(const QString& versionOutput);
    /** Judges an output; a year that could not be read is not held against the program. */
    static Result judge(const QString& versionOutput);
    /** Runs @p program (empty: not found) with "-version" and judges what it prints. */
    static Result check(const QString& program);
    /** What the user is told when ffmpeg is not there: why it is needed and where to get it. */
    static QString missingText();
};
