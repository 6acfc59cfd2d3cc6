#pragma once

// Qt's test includes this first, so that it means our manager wherever it names Qt's. The headers of Qt must
// come before the name changes.

#include <QtNetwork/QtNetwork>
#include <QtTest/QtTest>

#include <Quorvix/QXNetworkAccessManager.h>

#define QNetworkAccessManager QXNetworkAccessManager
