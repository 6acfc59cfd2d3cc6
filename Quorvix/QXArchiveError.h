#pragma once

/// The reason why no archive is written.
enum class QXArchiveError {
    /// The list of exchanges to be exported is empty.
    noEntries,
};
