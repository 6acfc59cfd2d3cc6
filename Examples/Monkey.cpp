#include "Examples/Monkey.h"

#include "Examples/AnimationClock.h"
#include "Examples/MonkeyDiary.h"
#include "Examples/MonkeyHome.h"
#include "Examples/StoreClient.h"

#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QuorvixClient.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>
#include <QtQuick/QQuickItem>
#include <QtTest/QTest>

#include <unistd.h>

namespace {

/// After so many events the monkey returns to the host.
constexpr int eventsOfATrip = 1500;

/// The physical memory of the process, in bytes; 0 where the system does not tell.
qint64 memoryOfProcess()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

qsizetype countItems(const QQuickItem *item)
{
    qsizetype count = 1;
    const QList<QQuickItem *> children = item->childItems();
    for (const QQuickItem *const child : children)
        count += countItems(child);
    return count;
}

} // namespace

void Monkey::moveFolders()
{
    static const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.path());
    for (const char *const variable : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(variable, path);
    QDir::setCurrent(folder.path());
}

Monkey::Monkey(QQuickWindow &window, MonkeyWorld::OpenWindow openWindow, const StoreClient &store,
               const QUrl &server, quint64 seed)
    : m_random(seed), m_hands(m_random, m_eyes), m_world(window, std::move(openWindow), m_random),
      m_traffic(server, m_random), m_store(store), m_seed(seed)
{
}

int Monkey::play(int events)
{
    constexpr int pressAndHold = 40;
    constexpr int animationSpeed = 20;
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(pressAndHold);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QuorvixClient::shared().setLogLevel(QXLogLevel::error);
    AnimationClock clock(animationSpeed);
    // A render loop with a thread has an animation driver of its own.
    if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
        clock.install();

    QTextStream out(stdout);
    out << "The monkey plays with seed " << m_seed << Qt::endl;
    std::optional<Remains> first;
    bool isHome = true;
    for (int event = 1; isHome && event <= events; ++event) {
        act();
        if (event % eventsOfATrip == 0 || event == events)
            isHome = goHome(first);
    }
    const Remains last = remains();
    out << "Events: " << MonkeyDiary::counts() << Qt::endl
        << "Reached: " << m_eyes.reached() << Qt::endl
        << "Seed " << m_seed << ", " << events << " events, " << MonkeyGuard::complaints() << " complaints, "
        << last.objects << " objects and " << last.memory / 1'000'000 << " MB remain" << Qt::endl;
    return MonkeyGuard::complaints() == 0 ? 0 : 1;
}

void Monkey::act()
{
    m_world.mend();
    QQuickWindow &window = m_world.window();
    m_eyes.look(window);
    keepPathInside();
    const int choice = m_random.below(200);
    if (choice < 96)
        m_hands.point(window);
    else if (choice < 116)
        m_hands.touch(window);
    else if (choice < 132)
        m_hands.turnWheel(window);
    else if (choice < 160)
        m_hands.pressKey(window);
    else if (choice < 168)
        m_hands.typeText(window);
    else if (choice < 184)
        m_hands.compose();
    else if (choice < 196)
        m_traffic.exchange();
    else
        m_world.change();
    QTest::qWait(m_random.chance(2) ? m_random.between(50, 300) : m_random.below(6));
}

/// The path of a file that a user saves can be edited at will, but no file may be written elsewhere.
void Monkey::keepPathInside() const
{
    QQuickItem *const field = m_eyes.item(QStringLiteral("QXActivityPath"));
    if (field && !field->property("text").toString().startsWith(QDir::homePath()))
        field->setProperty("text", QDir::homePath() + QStringLiteral("/saved"));
}

bool Monkey::isQuiet() const
{
    return m_traffic.running() == 0 && !m_store.isBusy();
}

bool Monkey::goHome(std::optional<Remains> &first)
{
    MonkeyDiary::note("home");
    const auto isQuiet = [this] {
        return this->isQuiet();
    };
    m_hands.letGo(m_world.window());
    m_world.restore();
    QQuickWindow &window = m_world.window();
    if (!MonkeyHome::leaveAll(window, isQuiet) || !MonkeyHome::deleteRules(window, isQuiet))
        return false;
    QXRequestRecorder::shared().clear();
    QGuiApplication::clipboard()->clear();
    QDir(QDir::homePath()).removeRecursively();
    QDir().mkpath(QDir::homePath());

    const Remains now = remains();
    if (!first) {
        first = now;
        return true;
    }
    constexpr qint64 largestGrowth = 800'000'000;
    if (now.objects > 2 * first->objects)
        MonkeyGuard::complain(QStringLiteral("%1 objects became %2").arg(first->objects).arg(now.objects));
    if (now.memory > first->memory + largestGrowth)
        MonkeyGuard::complain(
            QStringLiteral("%1 MB became %2 MB").arg(first->memory / 1'000'000).arg(now.memory / 1'000'000));
    return true;
}

Monkey::Remains Monkey::remains() const
{
    const qsizetype objects = m_world.window().findChildren<QObject *>().size();
    return {objects + countItems(m_world.window().contentItem()), memoryOfProcess()};
}
