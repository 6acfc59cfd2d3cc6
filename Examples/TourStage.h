#pragma once

#include "Examples/TourRobot.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>

#include <functional>

/// A part of the tour: a sequence of steps, and their common helpers.
class TourStage
{
public:
    struct Step
    {
        /// The name of the step and of its picture.
        const char *name;
        /// Runs the step. Returns false when a check failed; the robot then has the complaint.
        std::function<bool()> take;
    };

    TourStage(TourRobot &robot, const QString &outputFolder);
    virtual ~TourStage();
    TourStage(const TourStage &) = delete;
    TourStage &operator=(const TourStage &) = delete;

    /// The steps in the order in which they run.
    [[nodiscard]] virtual QList<Step> steps() = 0;

protected:
    static constexpr QSize phone{390, 844};

    [[nodiscard]] static QString name(const char *objectName);
    /// Whether an exchange with this URL path and this status was captured.
    [[nodiscard]] static bool captured(const QString &path, int status);
    [[nodiscard]] static qsizetype capturedCount();
    /// Shows all texts in twice the size that they have now.
    static void doubleTextSize();

    /// Searches the list for @p search and opens the newest exchange that matches.
    bool openExchange(const char *search);
    bool closeExchange();
    /// Waits until the tree of the visible body is ready, and opens it.
    bool openTree();
    bool closeTree();

    [[nodiscard]] TourRobot &robot() const noexcept { return m_robot; }
    [[nodiscard]] QString outputFile(const QString &fileName) const;
    /// The time at which the tour began.
    [[nodiscard]] const QDateTime &started() const noexcept { return m_started; }

private:
    TourRobot &m_robot;
    const QString m_outputFolder;
    const QDateTime m_started;
};
