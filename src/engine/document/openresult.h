// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kel {

/// Outcome of reading a KEL file. The numbers are part of the `kel` tool's
/// contract (its exit status), so they must not change.
enum class OpenResult : int {
    Ok = 0,
    CannotOpen = 1, ///< missing or unreadable file
    NotKel = 2,     ///< wrong magic words
    TooOld = 3,     ///< compatible revision below 1
    TooNew = 4,     ///< compatible revision above what we read
    Damaged = 5,    ///< lengths, CRC, inflate or payload structure wrong
    TooBig = 6,     ///< answer matrix (or, on 9x systems, the file) too large
};

} // namespace kel
