#pragma once

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtQuick/QQuickWindow>

class QRegion;

/// A transparent window of our own, exactly over a window of the host that is not a Qt Quick window. Main
/// thread only.
///
/// It follows the host's window wherever that goes, and lies just above it, never above other applications.
/// On Wayland, where a program cannot place its windows, it is a part of the host's window.
class QXCoverWindow final : public QQuickWindow
{
    Q_OBJECT

public:
    /// The smallest window in which screens can be used.
    static constexpr QSize usableSize{320, 400};
    /// Whether screens can be used in a window of this size.
    [[nodiscard]] static bool isRoomy(QSize size);

    QXCoverWindow();
    ~QXCoverWindow() override;

    /// Covers @p area, and belongs to @p owner: the same window, or a modal one that would block this window
    /// otherwise. Shows this window again after it has been closed.
    void cover(QWindow &area, QWindow &owner);
    /// The window that is covered; null when the host has deleted it.
    [[nodiscard]] QWindow *area() const { return m_area; }
    [[nodiscard]] QWindow *owner() const { return m_owner; }

    /// Hides or shows this window, if the window that it covers is visible.
    void setHidden(bool hidden);
    /// Whether the user has closed this window.
    [[nodiscard]] bool isClosed() const { return isWanted() && !isVisible() && !m_isDelayed; }

    /// Sets whether a screen is open. Only then this window takes the keyboard, at once and also when it is
    /// clicked, and is larger than a host's window that has no room for a screen.
    void setShowsScreens(bool shows);
    /// Limits input to a region. An empty region removes the limit.
    void limitTo(const QRegion &region);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// Emitted when the host's window has been hidden, minimised or deleted, and when a modal window blocks
    /// this one or the user closes it.
    void placeLost();

protected:
    bool event(QEvent *event) override;
    void exposeEvent(QExposeEvent *event) override;

private:
    [[nodiscard]] bool isWanted() const;
    void follow(QWindow &area);
    void attachTo(QWindow &owner);
    void detach();
    void fit();
    void correct();
    void stayAbove();
    [[nodiscard]] QRect place() const;
    void updateVisibility();
    void showAgain();

    QPointer<QWindow> m_area;
    QPointer<QWindow> m_owner;
    int m_corrections = 0;
    bool m_isHidden = true;
    bool m_showsScreens = false;
    /// Whether this window is about to be shown, after the host's.
    bool m_isDelayed = false;
    /// Whether this window has appeared since it was last shown, or is taken for it.
    bool m_isOnScreen = false;
    /// Runs while this window is to be shown again as soon as it is on the screen.
    QTimer m_wait;
};
