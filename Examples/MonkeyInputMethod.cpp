#include "Examples/MonkeyInputMethod.h"

#include "Examples/MonkeyDiary.h"
#include "Examples/MonkeyRandom.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QInputMethodEvent>
#include <QtGui/QTextCharFormat>

#include <limits>

namespace {

using Attribute = QInputMethodEvent::Attribute;

QVariant ask(QObject &target, Qt::InputMethodQuery query)
{
    QInputMethodQueryEvent event(query);
    QCoreApplication::sendEvent(&target, &event);
    return event.value(query);
}

QVariant underlined()
{
    QTextCharFormat format;
    format.setFontUnderline(true);
    return format;
}

void send(QObject &target, QInputMethodEvent &event)
{
    QString what = QStringLiteral("\"%1\" \"%2\" %3+%4")
                       .arg(event.preeditString(), event.commitString())
                       .arg(event.replacementStart())
                       .arg(event.replacementLength());
    for (const Attribute &attribute : event.attributes())
        what += QStringLiteral(" %1:%2+%3").arg(attribute.type).arg(attribute.start).arg(attribute.length);
    MonkeyDiary::note("compose", what.simplified());
    QCoreApplication::sendEvent(&target, &event);
}

} // namespace

void MonkeyInputMethod::sendValid(QObject &target, const QString &composed, const QString &committed,
                                  MonkeyRandom &random)
{
    const int cursor = ask(target, Qt::ImCursorPosition).toInt();
    const int length = static_cast<int>(ask(target, Qt::ImSurroundingText).toString().size());
    const int preedit = static_cast<int>(composed.size());
    QList<Attribute> attributes;
    if (random.chance(60))
        attributes += Attribute(QInputMethodEvent::Cursor, random.between(0, preedit), 1, {});
    if (preedit > 0 && random.chance(50)) {
        const int start = random.below(preedit);
        attributes +=
            Attribute(QInputMethodEvent::TextFormat, start, random.between(1, preedit - start), underlined());
    }
    const bool commits = random.chance(60);
    // Composed text replaces the selection, so that the text may be shorter when the attribute is read.
    if (!commits && preedit == 0 && random.chance(50)) {
        const int start = random.between(0, length);
        attributes += Attribute(QInputMethodEvent::Selection, start, random.between(0, length - start), {});
    }
    QInputMethodEvent event(composed, attributes);
    if (commits) {
        const int start = random.chance(50) ? cursor : random.between(0, cursor);
        const int part = random.chance(50) ? 0 : random.between(0, cursor - start);
        event.setCommitString(committed, start - cursor, part);
    }
    send(target, event);
}

void MonkeyInputMethod::sendAny(QObject &target, const QString &composed, const QString &committed,
                                MonkeyRandom &random)
{
    const auto number = [&random]() -> int {
        switch (random.below(8)) {
        case 0:
            return std::numeric_limits<int>::max();
        case 1:
            return std::numeric_limits<int>::min();
        case 2:
            return random.between(-1'000'000, 1'000'000);
        default:
            return random.between(-12, 12);
        }
    };
    QList<Attribute> attributes;
    for (int left = random.below(4); left > 0; --left) {
        const auto type = static_cast<QInputMethodEvent::AttributeType>(random.below(5));
        const QVariant value =
            type == QInputMethodEvent::TextFormat && random.chance(80) ? underlined() : QVariant();
        attributes += Attribute(type, number(), number(), value);
    }
    QInputMethodEvent event(composed, attributes);
    if (random.chance(70))
        event.setCommitString(committed, number(), number());
    send(target, event);
}
