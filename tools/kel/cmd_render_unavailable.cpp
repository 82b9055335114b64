// SPDX-License-Identifier: GPL-3.0-or-later
// `kel render` in a build without the drawing layer (the sanitizer build):
// the command exists and says why it cannot draw.
#include "commands.h"

#include <QCoreApplication>

namespace kel::cli {

std::unique_ptr<QCoreApplication> makePictureApplication(int &argc, char **argv)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

int renderCommand(const Document &, const QStringList &, CommandOutput &output)
{
    output.err += QStringLiteral("kel render: this kel was built without pictures (KEL_BUILD_GUI=OFF)\n");
    return UsageError;
}

} // namespace kel::cli

namespace kel::cli {

int reportCommand(const Document &, const QStringList &, CommandOutput &output)
{
    output.err += QStringLiteral("kel report: this kel was built without pictures (KEL_BUILD_GUI=OFF)\n");
    return UsageError;
}

} // namespace kel::cli
