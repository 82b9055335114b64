// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target for the KEL reader; the work is in readerharness.h so
// that the inputs kept under crashers/ replay in the ordinary tests.
#include "readerharness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    kel::fuzz::exerciseReader(data, size);
    return 0;
}
