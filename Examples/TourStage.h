#pragma once

#include "Examples/TourRobot.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>

#include <functional>

/// A part of the tour: steps that build on one another, and what they share.
class TourStage
{
public:
    struct Step
    {
        /// Names the step's picture, too.
        const char *name;
        /// False with a complaint of the robot's when something was not as expected.
        std::function<bool()> take;
    };

    TourStage(TourRobot &robot, const QString &outputFolder);
    virtual ~TourStage();
    TourStage(const TourStage &) = delete;
    TourStage &operator=(const TourStage &) = delete;

    /// In the order in which they are taken.
    [[nodiscard]] virtual QList<Step> steps() = 0;

protected:
    static constexpr QSize phone{390, 844};

    [[nodiscard]] static QString name(const char *objectName);
    /// Whether an exchange with this path of the URL and this status is among the captured ones.
    [[nodiscard]] static bool captured(const QString &path, int status);
    [[nodiscard]] static qsizetype capturedCount();

    /// Opens the newest exchange that is found by @p search, from the list.
    bool openExchange(const char *search);
    bool closeExchange();
    /// Opens the tree of the body that is on show, once it is ready.
    bool openTree();
    bool closeTree();

    [[nodiscard]] TourRobot &robot() const noexcept { return m_robot; }
    [[nodiscard]] QString outputFile(const QString &fileName) const;
    /// When the tour began.
    [[nodiscard]] const QDateTime &started() const noexcept { return m_started; }

private:
    TourRobot &m_robot;
    const QString m_outputFolder;
    const QDateTime m_started;
};
