#include "Controls/QXAppearance.h"
#include "Controls/QXSpring.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QScopeGuard>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// How springs move, and which settings of the desktop switch movements off.
class MotionRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void speedAndPlaceDecide_data();
    void speedAndPlaceDecide();
    void springsEndSoftly();
    void settingsReduceMotion_data();
    void settingsReduceMotion();

private:
    std::chrono::milliseconds m_now = 0ms;
};

void MotionRulesTest::speedAndPlaceDecide_data()
{
    QTest::addColumn<bool>("wasOpen");
    QTest::addColumn<QList<int>>("places"); // from 0, in pixels of 400 towards away
    QTest::addColumn<int>("pause");         // between two places, in milliseconds
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("held only, open") << true << QList<int>{3} << 500 << true;
    QTest::newRow("held only, leaving") << false << QList<int>{3} << 500 << false;
    QTest::newRow("slow and near") << true << QList<int>{50, 100} << 500 << true;
    QTest::newRow("slow and far") << true << QList<int>{100, 200} << 500 << false;
    QTest::newRow("fast and near") << true << QList<int>{20, 50} << 16 << false;
    QTest::newRow("far, and fast back") << true << QList<int>{200, 300, 280, 260} << 16 << true;
    QTest::newRow("fast, and then still") << true << QList<int>{30, 60, 60} << 120 << true;
}

void MotionRulesTest::speedAndPlaceDecide()
{
    QFETCH(const bool, wasOpen);
    QFETCH(const QList<int>, places);
    QFETCH(const int, pause);
    QXSpring spring;
    spring.setProperty("extent", 400);
    spring.setClock([this] { return m_now; });
    spring.jump(true);
    spring.setOpen(wasOpen);
    QSignalSpy settled(&spring, &QXSpring::settled);
    spring.hold(0);
    for (const int place : places) {
        m_now += std::chrono::milliseconds(pause);
        spring.follow(place);
        QCOMPARE(spring.position(), 1 - place / 400.0);
    }
    if (places.size() < 4)
        m_now += std::chrono::milliseconds(pause);
    spring.release();
    QTEST(spring.isOpen(), "isOpen");
    QCOMPARE(settled.size(), 0);
    spring.setTime(2);
    QCOMPARE(spring.position(), spring.isOpen() ? 1 : 0);
    QCOMPARE(settled.size(), 1);
    QVERIFY(!spring.isMoving());
}

/// It goes on without a jump from the speed that it has, slows down, and takes a quarter to half a second.
void MotionRulesTest::springsEndSoftly()
{
    QXSpring spring;
    spring.setProperty("extent", 400);
    spring.setOpen(true);
    std::vector<qreal> steps;
    int milliseconds = 0;
    for (qreal last = 0; spring.isMoving(); milliseconds += 8) {
        spring.setTime(milliseconds / 1000.0);
        steps.push_back(spring.position() - std::exchange(last, spring.position()));
    }
    QVERIFY(milliseconds > 250 && milliseconds < 500);
    QVERIFY(steps.back() < 0.002);
    steps.pop_back();
    const auto fastest = std::max_element(steps.begin(), steps.end());
    QVERIFY(*fastest < 0.1 && std::is_sorted(fastest, steps.end(), std::greater<>()));
    QVERIFY(std::is_sorted(steps.begin(), fastest));
}

void MotionRulesTest::settingsReduceMotion_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isReduced");
    const QString kde = u"kdeglobals"_s;
    const QString gtk = u"gtk-3.0/settings.ini"_s;
    QTest::newRow("nothing") << QByteArray() << kde << QByteArray() << false;
    QTest::newRow("variable") << QByteArray("1") << kde << QByteArray() << true;
    QTest::newRow("factor") << QByteArray() << kde << QByteArray("[KDE]\nAnimationDurationFactor=0\n")
                            << true;
    QTest::newRow("half") << QByteArray() << kde << QByteArray("[KDE]\nAnimationDurationFactor=0.5\n")
                          << false;
    QTest::newRow("off") << QByteArray() << gtk << QByteArray("[Settings]\ngtk-enable-animations=false\n")
                         << true;
    QTest::newRow("on") << QByteArray() << gtk << QByteArray("[Settings]\ngtk-enable-animations=1\n")
                        << false;
    QTest::newRow("variable wins") << QByteArray("0") << gtk
                                   << QByteArray("[Settings]\ngtk-enable-animations=0\n") << false;
}

void MotionRulesTest::settingsReduceMotion()
{
    QFETCH(const QByteArray, variable);
    QFETCH(const QString, file);
    QFETCH(const QByteArray, content);
    QFETCH(const bool, isReduced);
    const QTemporaryDir folder; // tests that run at the same time share the usual one of tests
    QVERIFY(QDir(folder.path()).mkpath(u"gtk-3.0"_s));
    QFile settings(folder.filePath(file));
    QVERIFY(settings.open(QFile::WriteOnly) && settings.write(content) == content.size());
    settings.close();
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    qputenv("QUORVIX_REDUCED_MOTION", variable);
    const auto restore = qScopeGuard([&] {
        qunsetenv("QUORVIX_REDUCED_MOTION");
        qunsetenv("XDG_CONFIG_HOME");
        QStandardPaths::setTestModeEnabled(true);
    });
    QXAppearance appearance;
    QCOMPARE(appearance.isMotionReduced(), isReduced);
    // Desktops change their files while the program runs.
    QSignalSpy changed(&appearance, &QXAppearance::changed);
    appearance.refresh();
    QCOMPARE(changed.size(), 0);
    QVERIFY(settings.open(QFile::WriteOnly) &&
            settings.setFileTime(QDateTime::currentDateTime().addSecs(9), QFile::FileModificationTime));
    settings.close();
    appearance.refresh();
    QCOMPARE(appearance.isMotionReduced(), variable == "1");
    QCOMPARE(changed.size(), variable.isEmpty() && isReduced ? 1 : 0);
}

QTEST_MAIN(MotionRulesTest)
#include "MotionRulesTest.moc"
