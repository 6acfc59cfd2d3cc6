#pragma once

#include "Examples/TourStage.h"

/// Shows the same screens in the size of a tablet, first dark and then light. Begins in a tree.
class TabletStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool tree();
    bool details();
    bool inspector();
    bool breakpoints();
    bool catalogue();
    bool heldResponse();
    bool product();
    bool inspectorByDay();
    bool detailsByDay();
    bool menuByDay();
    bool shareMenuByDay();
    bool shareSheetByDay();
    bool treeByDay();
};
