#pragma once

#include "Examples/TourStage.h"

/// Shows the same screens with dark colours.
class NightStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool nightFalls();
    bool productByNight();
    bool profileByNight();
    bool inspectorByNight();
    bool detailsByNight();
    bool menuByNight();
    bool shareMenuByNight();
    bool bodyByNight();
    bool treeByNight();
};
