#pragma once

#include "Examples/TourStage.h"

/// The way out of the inspector: the list is emptied and closed, the button put where it is out of the way.
class FarewellStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool trashEmptiesList();
    bool inspectorCloses();
    bool buttonIsDragged();
};
