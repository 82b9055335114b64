// SPDX-License-Identifier: GPL-3.0-or-later
// Every input that once made the reader's fuzz target fail is kept under
// fuzz/crashers/ and replayed here through the same harness, so that the
// fault stays fixed in every build, not only in the fuzzing one.
#include "readerharness.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

TEST(FuzzCrashers, EveryKeptInputReplaysCleanly)
{
    const QDir dir(QStringLiteral(KEL_CRASHERS_DIR));
    const QStringList names = dir.entryList(QDir::Files, QDir::Name);
    ASSERT_FALSE(names.isEmpty()) << "no inputs under " << KEL_CRASHERS_DIR;
    for (const QString &name : names) {
        if (name == QLatin1String("README.md"))
            continue;
        QFile f(dir.filePath(name));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << name.toStdString();
        const QByteArray input = f.readAll(); // a fault would stop us in the harness
        const int code = kel::fuzz::exerciseReader(reinterpret_cast<const std::uint8_t *>(input.constData()),
                                                   std::size_t(input.size()));
        EXPECT_TRUE(code >= 0 && code <= 6) << name.toStdString() << ": " << code; // a result code of the reader
    }
}

} // namespace
