#pragma once
#include <QtCore/qglobal.h>

// Symbols of libZalGApplication are hidden unless marked with GAPP_EXPORT.
#if defined(GAPP_BUILD_LIBRARY)
#define GAPP_EXPORT Q_DECL_EXPORT
#else
#define GAPP_EXPORT Q_DECL_IMPORT
#endif
