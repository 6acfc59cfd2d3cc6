#pragma once

#include "Examples/TourStage.h"

#include <QtGui/QFont>

/// Shows the same screens with text of twice the size, and then mirrored as in Arabic. Begins in a tree,
/// and ends in a search of the list.
class LargeTextStage final : public TourStage
{
public:
    LargeTextStage(TourRobot &robot, const QString &outputFolder);

    [[nodiscard]] QList<Step> steps() override;

private:
    bool tree();
    bool details();
    bool menu();
    bool shareMenu();
    bool alert();
    bool inspector();
    bool breakpoints();
    bool heldResponse();
    bool mirroredHeldResponse();
    bool mirroredInspector();
    bool mirroredDetails();
    bool mirroredMenu();
    bool mirroredTree();
    bool mirroredSearch();

    QFont m_usual;
};
