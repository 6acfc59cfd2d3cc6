#pragma once

#include <QtCore/QtGlobal>

#if defined(QUORVIX_STATIC)
#define QUORVIX_CORE_EXPORT
#elif defined(QUORVIX_CORE_LIBRARY)
#define QUORVIX_CORE_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_CORE_EXPORT Q_DECL_IMPORT
#endif

/// Marks functions of the core that the library of the screens calls. Their headers are not installed, and
/// any version may change them.
#define QUORVIX_INTERNAL_EXPORT QUORVIX_CORE_EXPORT
