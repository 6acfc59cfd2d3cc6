#pragma once

#include <QtCore/QtGlobal>

#if defined(QUORVIX_PLATFORM_LIBRARY)
#define QUORVIX_PLATFORM_EXPORT Q_DECL_EXPORT
#else
#define QUORVIX_PLATFORM_EXPORT Q_DECL_IMPORT
#endif
