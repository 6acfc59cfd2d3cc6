#include "Benchmarks/Guard/Baseline.h"

#include <QtCore/QLocale>
#include <QtCore/QSysInfo>

#if defined(__x86_64__)
#include <cpuid.h>
#endif
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

using namespace Qt::StringLiterals;

namespace {

QString processorFeatures()
{
#if defined(__x86_64__)
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    __get_cpuid(1, &eax, &ebx, &ecx, &edx);
    QString features = __builtin_cpu_supports("avx2") ? u"AVX2"_s : u"no AVX2"_s;
    const auto add = [&](unsigned bits) {
        features += u' ' + QString::number(bits, 16);
    };
    add(ecx);
    add(edx);
    if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) {
        add(ebx);
        add(ecx);
    }
    return features;
#else
    return {};
#endif
}

QString inGroups(double value)
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions({});
    return locale.toString(value, 'f', 0);
}

QString line(const QString &name, const QString &counted, const QString &recorded, const QString &note)
{
    QString text =
        name.leftJustified(52) + counted.rightJustified(14) + recorded.rightJustified(14) + u"  "_s + note;
    while (text.endsWith(u' '))
        text.chop(1);
    return text + u'\n';
}

QString differences(const QJsonObject &here, const QJsonObject &there)
{
    QString text;
    for (const QString &key : here.keys()) {
        if (here[key] != there[key])
            text += u"  "_s + key + u": "_s + here[key].toString() + u" here, "_s + there[key].toString() +
                    u" there\n"_s;
    }
    return text;
}

} // namespace

QJsonObject Baseline::thisSystem()
{
    QJsonObject system{{u"architecture"_s, QSysInfo::buildCpuArchitecture()},
                       {u"flags"_s, QStringLiteral(QUORVIX_BUILD_FLAGS)},
                       {u"processor"_s, processorFeatures()},
                       {u"qt"_s, QString::fromLatin1(qVersion())},
                       {u"simdjson"_s, QStringLiteral(QUORVIX_SIMDJSON)},
                       {u"system"_s, QSysInfo::prettyProductName()}};
#ifdef __clang__
    system.insert(u"compiler"_s, u"clang " __clang_version__ ""_s);
#else
    system.insert(u"compiler"_s, u"g++ " __VERSION__ ""_s);
#endif
#ifdef __GLIBC__
    system.insert(u"libc"_s, QString::fromLatin1(gnu_get_libc_version()));
#endif
    return system;
}

QJsonObject Baseline::readCounts(const QByteArray &lines)
{
    QJsonObject counts;
    for (const QByteArray &entry : lines.split('\n')) {
        const qsizetype space = entry.indexOf(' ');
        if (space > 0)
            counts.insert(QString::fromUtf8(entry.mid(space + 1)), entry.left(space).toDouble());
    }
    return counts;
}

Baseline::Verdict Baseline::compare(const QJsonObject &counts, const QJsonObject &system,
                                    const QJsonObject &baseline)
{
    Verdict verdict;
    const QJsonObject known = baseline[u"instructions"_s].toObject();
    const bool isComparable = system == baseline[u"system"_s].toObject();
    bool isOutdated = false;
    verdict.text = line(u"path"_s, u"instructions"_s, u"recorded"_s, u""_s);
    for (const QString &name : counts.keys()) {
        const double counted = counts[name].toDouble();
        const double recorded = known[name].toDouble();
        QString note = u"not recorded"_s;
        if (recorded > 0) {
            const double change = counted / recorded - 1;
            const bool isMore = change > tolerance;
            const bool isLess = change < -tolerance;
            note = (change < 0 ? u""_s : u"+"_s) + QString::number(100 * change, 'f', 2) + u" %"_s +
                   (isMore   ? u" MORE"_s
                    : isLess ? u" less"_s
                             : u""_s);
            verdict.isGood = verdict.isGood && !isMore;
            isOutdated = isOutdated || isLess;
        } else {
            verdict.isGood = false;
        }
        verdict.text += line(name, inGroups(counted), recorded > 0 ? inGroups(recorded) : QString(), note);
    }
    for (const QString &name : known.keys()) {
        if (!counts.contains(name)) {
            verdict.text += line(name, {}, inGroups(known[name].toDouble()), u"NOT COUNTED"_s);
            verdict.isGood = false;
        }
    }
    if (!isComparable) {
        verdict.isGood = true;
        verdict.text += u"\nThe recorded numbers are from another system, so that nothing is compared:\n"_s +
                        differences(system, baseline[u"system"_s].toObject());
    } else if (!verdict.isGood) {
        verdict.text += u"\nA path executes over %1 % more instructions than before, or was not counted. If "
                        u"that is what a "
                        "change wants, ./run guard --record.\n"_s.arg(100 * tolerance);
    } else if (isOutdated) {
        verdict.text += u"\nA path became cheaper. Keep it so: ./run guard --record.\n"_s;
    }
    return verdict;
}
