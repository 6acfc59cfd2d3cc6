#pragma once

#include "Quorvix/QuorvixClient.h"

#include <QtTest/QTest>

/// As long as it lives, the test fails for every error that the inspector logs, QML's included, and for every
/// warning. To be made in init(): Qt forgets before each test function what it was to fail for.
class ComplaintWatch final
{
public:
    ComplaintWatch()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QuorvixClient::shared().setLogLevel(QXLogLevel::error);
        formerHandler = qInstallMessageHandler(&ComplaintWatch::hear);
    }
    ~ComplaintWatch()
    {
        qInstallMessageHandler(formerHandler);
        QuorvixClient::shared().setLogLevel(QXLogLevel::none);
    }
    Q_DISABLE_COPY_MOVE(ComplaintWatch)

private:
    static void hear(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (type == QtCriticalMsg)
            QTest::qFail(qPrintable(message), __FILE__, __LINE__);
        formerHandler(type, context, message);
    }

    inline static QtMessageHandler formerHandler = nullptr;
};
