#pragma once

#include <QtCore/QtGlobal>

/// @def QUORVIX_EXPORT
/// Marks what Quorvix::Quorvix exports.
#if defined(QUORVIX_STATIC)
#define QUORVIX_EXPORT
#elif defined(QUORVIX_LIBRARY)
#define QUORVIX_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_EXPORT Q_DECL_IMPORT
#endif
