#pragma once

#include "Controls/QXBackgroundTask.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

/// Finds a text in what a screen shows, while the user types it in a QXFindBar. Main thread only.
///
/// Upper and lower case are the same. A large content is searched in steps by another thread: the nearest
/// match is shown as soon as it is known, and the count grows until the end is reached. A derived class knows
/// the content; it gives each match a number, in the order in which the screen shows them.
class QXFinder : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the base of finders")
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// Which match is shown and how many there are, for people: "3 of 12". Empty without a text.
    Q_PROPERTY(QString outcome READ outcome NOTIFY outcomeChanged)
    Q_PROPERTY(bool hasMatches READ hasMatches NOTIFY outcomeChanged)
    /// Whether all matches in view are to be marked, as they are while the find bar is open.
    Q_PROPERTY(bool marksMatches READ marksMatches WRITE setMarksMatches NOTIFY marksMatchesChanged)

public:
    /// What a key asks for.
    enum Command { NoCommand, Find, Next, Previous };
    Q_ENUM(Command)

    /// The command of a key: Ctrl+F, Ctrl+G and F3, and with Shift the last two for the previous match, on
    /// every platform.
    [[nodiscard]] Q_INVOKABLE static int commandFor(int key, int modifiers);

    [[nodiscard]] const QString &text() const noexcept { return m_text; }
    void setText(const QString &text);
    [[nodiscard]] QString outcome() const;
    [[nodiscard]] bool hasMatches() const { return count() > 0; }
    [[nodiscard]] bool marksMatches() const noexcept { return m_marksMatches; }
    void setMarksMatches(bool marks);

    /// Shows the match behind the one that is shown, or the first one behind the last.
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    /// Gives the keyboard focus to the place of the match that is shown. Returns whether there is one.
    Q_INVOKABLE virtual bool focusMatch() = 0;

Q_SIGNALS:
    void textChanged();
    void outcomeChanged();
    void marksMatchesChanged();

protected:
    explicit QXFinder(QObject *parent);

    /// Searches again, because the content is another one.
    void restart();
    /// Called by searchFurther() when a step is done.
    void stepDone();
    [[nodiscard]] QXBackgroundTask &task() { return m_task; }
    /// The match that is shown; negative if there is none.
    [[nodiscard]] qsizetype current() const noexcept { return m_current; }

    /// Forgets all matches, and prepares to search for text().
    virtual void begin() = 0;
    [[nodiscard]] virtual bool isComplete() const = 0;
    /// Searches the next part of the content, with task(), and then calls stepDone().
    virtual void searchFurther() = 0;
    /// The number of matches that are known so far.
    [[nodiscard]] virtual qsizetype count() const = 0;
    /// The first known match that is not before the cursor or what is selected; count() if there is none.
    [[nodiscard]] virtual qsizetype matchAtCursor() const = 0;
    /// Whether a match is what the screen has selected.
    [[nodiscard]] virtual bool isSelected(qsizetype match) const = 0;
    virtual void show(qsizetype match) = 0;

private:
    enum class Goal { None, AtCursor, Next, Previous };

    void moveTo(Goal goal);
    [[nodiscard]] qsizetype matchFor(Goal goal) const;

    QString m_text;
    bool m_marksMatches = false;
    qsizetype m_current = -1;
    /// Where to go as soon as enough matches are known.
    Goal m_goal = Goal::None;
    QXBackgroundTask m_task;
};
