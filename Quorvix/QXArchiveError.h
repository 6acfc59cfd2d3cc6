#pragma once

/// Why there is nothing to archive.
enum class QXArchiveError {
    /// The list of exchanges to be exported is empty.
    noEntries,
};
