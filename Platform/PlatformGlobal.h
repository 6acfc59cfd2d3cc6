#pragma once

#include <QtCore/QtGlobal>

#if defined(QUORVIX_STATIC)
#define QUORVIX_CORE_EXPORT
#elif defined(QUORVIX_CORE_LIBRARY)
#define QUORVIX_CORE_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_CORE_EXPORT Q_DECL_IMPORT
#endif

/// Marks what the library of the screens calls in the core. Its header is not installed, and it may change
/// with any version.
#define QUORVIX_INTERNAL_EXPORT QUORVIX_CORE_EXPORT
