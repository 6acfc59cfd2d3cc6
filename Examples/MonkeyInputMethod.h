#pragma once

#include <QtCore/QString>

class MonkeyRandom;
class QObject;

/// Input-method events that compose and commit text.
namespace MonkeyInputMethod {

/// Sends an event whose positions are within the text of @p target and the composed text.
void sendValid(QObject &target, const QString &composed, const QString &committed, MonkeyRandom &random);

/// Sends an event with any positions: negative ones, ones beyond the ends, within a character, the largest
/// numbers.
void sendAny(QObject &target, const QString &composed, const QString &committed, MonkeyRandom &random);

} // namespace MonkeyInputMethod
