#pragma once

#include <QtCore/QtGlobal>

#if defined(QUORVIX_LIBRARY)
#define QUORVIX_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_EXPORT Q_DECL_IMPORT
#endif

/// Exports a type of the innards to the project's own tests and benchmarks. Its header is not installed.
#define QUORVIX_INTERNAL_EXPORT QUORVIX_EXPORT
