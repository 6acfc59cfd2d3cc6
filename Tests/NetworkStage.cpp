#include "Tests/NetworkStage.h"

#include <QtCore/QEventLoop>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>

#include <algorithm>

namespace {

thread_local ReplyDiary *currentDiary = nullptr;
QtMessageHandler formerHandler = nullptr;

/// A host sees warnings, too. They name the class of the reply, which may be another one.
void keepMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    static const QRegularExpression className(QStringLiteral("\\((QNetworkReply|QX)\\w+"));
    if (currentDiary && type != QtInfoMsg)
        currentDiary->write("message: " +
                            QString(message).replace(className, QStringLiteral("(reply")).toUtf8());
    else
        formerHandler(type, context, message);
}

/// The reply or the request that a line is about.
QByteArray ownerOf(const QByteArray &line)
{
    const qsizetype name = line.indexOf("reply");
    return line.startsWith("arrived") ? line : name < 0 ? QByteArray() : line.mid(name, 6);
}

} // namespace

NetworkStage::NetworkStage(QNetworkAccessManager *manager, ScriptedServer::Transport transport)
    : server(transport), manager(manager), diary(*manager)
{
    diary.react([this](const QByteArray &signal, QNetworkReply *reply) {
        if (const Act act = m_acts.value(signal))
            act(*this, reply);
    });
}

QByteArrayList NetworkStage::perform(QNetworkAccessManager *manager, const Play &play,
                                     ScriptedServer::Transport transport)
{
    static const QtMessageHandler handler = formerHandler = qInstallMessageHandler(keepMessage);
    Q_UNUSED(handler)
    NetworkStage stage(manager, transport);
    currentDiary = &stage.diary;
    play(stage);
    stage.finish();
    stage.end();
    currentDiary = nullptr;
    QByteArrayList lines = stage.diary.lines();
    if (stage.isParallel)
        std::stable_sort(lines.begin(), lines.end(),
                         [](const auto &a, const auto &b) { return ownerOf(a) < ownerOf(b); });
    // Each stage has a port and a folder of its own.
    for (QByteArray &line : lines)
        line.replace(QByteArray::number(stage.server.port()), "PORT")
            .replace(stage.folder.path().toUtf8(), "FOLDER");
    return lines;
}

void NetworkStage::on(const QByteArray &signal, const Act &act)
{
    m_acts.insert(signal, [signal, act](NetworkStage &stage, QNetworkReply *reply) {
        stage.m_acts.remove(signal);
        act(stage, reply);
    });
}

void NetworkStage::each(const QByteArray &signal, const Act &act)
{
    m_acts.insert(signal, act);
}

void NetworkStage::until(const Condition &condition)
{
    QEventLoop loop;
    bool holds = false;
    const auto check = [&] {
        holds = holds || condition();
        if (holds)
            loop.quit();
    };
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &loop, check);
    QObject::connect(&diary, &ReplyDiary::written, &loop, check, Qt::QueuedConnection);
    tick.start(1);
    QTimer::singleShot(5'000, &loop, &QEventLoop::quit);
    check();
    if (!holds)
        loop.exec();
    if (!holds)
        diary.write("WAITED IN VAIN");
}

void NetworkStage::end()
{
    // What is posted now still belongs to the play.
    int turns = 3;
    until([&] { return --turns < 0; });
    bool isWhole = true;
    for (const auto &reply : diary.replies()) {
        isWhole = isWhole && reply && reply->error() != QNetworkReply::OperationCanceledError;
        if (!reply)
            continue;
        diary.describe(*reply);
        diary.note("left", reply->readAll());
        diary.note("then", reply->bytesAvailable(), reply->atEnd(), reply->read(1), reply->errorString());
        reply->close();
        reply->abort();
        diary.note("after close", reply->isOpen(), int(reply->error()), reply->errorString());
    }
    // How much of a request arrives before an abort is a matter of luck, and so is how often Qt repeats it.
    QByteArrayList arrived = isWhole ? server.arrived() : QByteArrayList();
    arrived.erase(std::unique(arrived.begin(), arrived.end()), arrived.end());
    for (const QByteArray &request : arrived)
        diary.note("arrived", request);
    if (manager)
        diary.note("children", manager->findChildren<QNetworkReply *>().size());
    delete manager.data();
    for (const auto &reply : diary.replies())
        delete reply.data();
}
