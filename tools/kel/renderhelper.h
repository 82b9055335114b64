// SPDX-License-Identifier: GPL-3.0-or-later
// The rendering helper: the program that draws `kel`'s pictures, so that
// `kel` itself needs only QtCore and zlib and starts in a few milliseconds.
// `kel render` becomes the helper; `kel batch` starts it at its first
// picture and keeps it for the rest of the batch.
#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <sys/types.h>

namespace kel::cli {

/// Exit status when the rendering helper is not installed or cannot be
/// started: EX_UNAVAILABLE of <sysexits.h>, clear of the result codes.
inline constexpr int HelperMissing = 69;

/// The helper's file name.
inline constexpr char HelperName[] = "kel-render";

/// Where the helper is: next to this program (the build tree) or in the
/// installation's libexec folder, found from this program's own folder, so
/// that any prefix works. Empty when neither exists.
QString renderHelperPath();

/// Replaces this process with the helper running `argv[1...]`. Returns only
/// when that fails, with the message printed and HelperMissing.
int execRenderHelper(char **argv);

/// The helper as a batch's partner: started at the first line it must
/// answer, fed one line at a time, stopped with the batch.
class RenderHelperBatch
{
public:
    /// `batchArgs`: FILE and the options of `kel batch`.
    explicit RenderHelperBatch(QStringList batchArgs);
    ~RenderHelperBatch();
    RenderHelperBatch(const RenderHelperBatch &) = delete;
    RenderHelperBatch &operator=(const RenderHelperBatch &) = delete;

    /// The helper's JSON line for `line`; when the helper is missing or
    /// stopped, a line with HelperMissing (or the helper's exit status) and
    /// the reason.
    std::string answer(const QString &line);

private:
    bool start(QString &error);
    QStringList mArgs;
    pid_t mPid = -1;
    int mTo = -1;
    std::FILE *mFrom = nullptr;
    QString mFailure; ///< set once the helper cannot answer any more
    int mFailureStatus = HelperMissing;
};

} // namespace kel::cli
