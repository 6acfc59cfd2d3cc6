// A program without a window: makes a request, and looks for it in the recorder. With the argument
// "nothing" it expects that nothing is recorded.
#include "../Greeter.h"

#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QXRequestRecorder.h>

#include <QtNetwork/QNetworkReply>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const bool records = !application.arguments().contains(QStringLiteral("nothing"));
    Greeter greeter;
    QXNetworkAccessManager manager;
    const QNetworkReply *const reply = manager.get(QNetworkRequest(greeter.url()));
    if (!waitFor("the reply", [reply] { return reply->isFinished(); }))
        return 1;

    const auto isRecorded = [] {
        const QXTraceList traces = QXRequestRecorder::shared().requests();
        return traces.size() == 1 && traces[0].response && traces[0].response->statusCode == 200;
    };
    if (records)
        return waitFor("the exchange in the recorder", isRecorded) ? 0 : 2;
    return QXRequestRecorder::shared().requests().isEmpty() ? 0 : 3;
}
