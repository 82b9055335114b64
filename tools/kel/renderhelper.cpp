// SPDX-License-Identifier: GPL-3.0-or-later
#include "renderhelper.h"

#include "commands.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace kel::cli {

namespace {

QString ownFolder()
{
    // Resolved through /proc, so that a link to kel still finds the
    // helper beside the real program.
    char path[4096];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0)
        return QString();
    return QFileInfo(QString::fromLocal8Bit(path, n)).absolutePath();
}

QString missingMessage()
{
    return QStringLiteral("kel: pictures are drawn by %1, which is not installed (looked beside kel and in %2)\n")
        .arg(QLatin1String(HelperName), QStringLiteral(KEL_HELPER_FROM_BIN));
}

} // namespace

QString renderHelperPath()
{
    const QString folder = ownFolder();
    if (folder.isEmpty())
        return QString();
    for (const QString &candidate : {folder + QLatin1Char('/') + QLatin1String(HelperName),
                                     QDir::cleanPath(folder + QStringLiteral("/" KEL_HELPER_FROM_BIN "/"))
                                         + QLatin1Char('/') + QLatin1String(HelperName)}) {
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return candidate;
    }
    return QString();
}

int execRenderHelper(char **argv)
{
    const QString path = renderHelperPath();
    if (path.isEmpty()) {
        printErr(missingMessage());
        return HelperMissing;
    }
    const QByteArray file = path.toLocal8Bit();
    argv[0] = const_cast<char *>(file.constData());
    execv(file.constData(), argv);
    printErr(QStringLiteral("kel: cannot start %1: %2\n").arg(path, QString::fromLocal8Bit(std::strerror(errno))));
    return HelperMissing;
}

RenderHelperBatch::RenderHelperBatch(QStringList batchArgs) : mArgs(std::move(batchArgs))
{
}

RenderHelperBatch::~RenderHelperBatch()
{
    if (mTo >= 0)
        close(mTo); // the helper's batch ends at the end of its input
    if (mFrom)
        std::fclose(mFrom);
    if (mPid > 0)
        waitpid(mPid, nullptr, 0);
}

bool RenderHelperBatch::start(QString &error)
{
    const QString path = renderHelperPath();
    if (path.isEmpty()) {
        error = missingMessage();
        return false;
    }
    int toHelper[2], fromHelper[2];
    if (pipe(toHelper) != 0)
        return error = QStringLiteral("kel: no pipe for the helper\n"), false;
    if (pipe(fromHelper) != 0) {
        close(toHelper[0]), close(toHelper[1]);
        return error = QStringLiteral("kel: no pipe for the helper\n"), false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toHelper[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromHelper[1], STDOUT_FILENO);
    for (int fd : {toHelper[0], toHelper[1], fromHelper[0], fromHelper[1]})
        posix_spawn_file_actions_addclose(&actions, fd);
    std::vector<QByteArray> words{path.toLocal8Bit(), QByteArrayLiteral("batch")};
    for (const QString &a : mArgs)
        words.push_back(a.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &w : words)
        argv.push_back(w.data());
    argv.push_back(nullptr);
    const int spawned = posix_spawn(&mPid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(toHelper[0]);
    close(fromHelper[1]);
    if (spawned != 0) {
        close(toHelper[1]), close(fromHelper[0]);
        mPid = -1;
        error = QStringLiteral("kel: cannot start %1: %2\n").arg(path, QString::fromLocal8Bit(std::strerror(spawned)));
        return false;
    }
    mTo = toHelper[1];
    mFrom = fdopen(fromHelper[0], "r");
    return true;
}

std::string RenderHelperBatch::answer(const QString &line)
{
    if (mPid < 0 && mFailure.isEmpty()) {
        QString error;
        if (!start(error))
            mFailure = error;
    }
    if (!mFailure.isEmpty())
        return batchAnswer(line, mFailureStatus, QString(), mFailure);

    // A helper that has stopped must not stop kel with SIGPIPE: its lines
    // get the reason instead.
    struct sigaction ignore = {}, previous = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &previous);
    const QByteArray request = line.toUtf8() + '\n';
    bool sent = true;
    for (qsizetype done = 0; sent && done < request.size();) {
        const ssize_t n = write(mTo, request.constData() + done, std::size_t(request.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        sent = n > 0;
        done += n > 0 ? n : 0;
    }
    sigaction(SIGPIPE, &previous, nullptr);

    // Anything before the answer (the helper could not read the document
    // it was given) is the reason it has none.
    QString said;
    char *text = nullptr;
    std::size_t capacity = 0;
    while (sent) {
        const ssize_t n = getline(&text, &capacity, mFrom);
        if (n <= 0)
            break;
        std::string reply(text, std::size_t(n));
        if (reply.back() == '\n')
            reply.pop_back();
        if (!reply.empty() && reply.front() == '{') {
            std::free(text);
            return reply;
        }
        said += QString::fromStdString(reply) + QLatin1Char('\n');
    }
    std::free(text);
    int status = 0;
    if (waitpid(mPid, &status, 0) == mPid && WIFEXITED(status) && WEXITSTATUS(status) != 0)
        mFailureStatus = WEXITSTATUS(status);
    mPid = 0; // waited for: the destructor must not wait again
    mFailure = QStringLiteral("kel batch: %1 stopped%2\n")
                   .arg(QLatin1String(HelperName), said.isEmpty() ? QString() : QStringLiteral(": ") + said.trimmed());
    return batchAnswer(line, mFailureStatus, QString(), mFailure);
}

} // namespace kel::cli
