#pragma once

#include "Examples/TourStage.h"

/// Leaves the inspector: clears and closes the list, and moves the floating button to an edge.
class ClosingStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool trashEmptiesList();
    bool inspectorCloses();
    bool buttonIsDragged();
};
