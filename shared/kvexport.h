#pragma once

#include <QtCore/qglobal.h>

/// Marks what libkvShared shows; every other symbol of the library is hidden.
#ifdef KVSHARED_BUILD
#define KVSHARED_EXPORT Q_DECL_EXPORT
#else
#define KVSHARED_EXPORT Q_DECL_IMPORT
#endif
