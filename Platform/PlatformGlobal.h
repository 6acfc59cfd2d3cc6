#pragma once

#include <QtCore/QtGlobal>

/// @def QUORVIX_CORE_EXPORT
/// Marks what Quorvix::Core exports.
#if defined(QUORVIX_STATIC)
#define QUORVIX_CORE_EXPORT
#elif defined(QUORVIX_CORE_LIBRARY)
#define QUORVIX_CORE_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_CORE_EXPORT Q_DECL_IMPORT
#endif

/// @namespace Quorvix
/// A platform for loading URLs, with the names that are usual there. The classes of the inspector itself are
/// in no namespace.

/// Marks functions of the core that the library of the screens calls. Their headers are not installed, and
/// any version may change them.
#define QUORVIX_INTERNAL_EXPORT QUORVIX_CORE_EXPORT
