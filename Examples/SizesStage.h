#pragma once

#include "Examples/TourStage.h"

#include <QtGui/QFont>

/// Shows the same screens on a phone that lies on its side, and on the smallest one. Begins in a search of
/// the list.
class SizesStage final : public TourStage
{
public:
    SizesStage(TourRobot &robot, const QString &outputFolder);

    [[nodiscard]] QList<Step> steps() override;

private:
    bool landscapeInspector();
    bool smallInspector();
    bool breakpoints();
    bool details();
    bool menu();
    bool shareMenu();
    bool shareSheet();
    bool tree();
    bool largeTextTree();
    bool largeTextDetails();
    bool smallHeldResponse();
    bool landscapeHeldResponse();

    QFont m_usual;
};
