#pragma once

#include "Examples/TourStage.h"

/// The same screens in the dark, and on a tablet.
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
    bool wideCatalogue();
    bool wideProduct();
    bool wideInspector();
    bool wideByDay();
};
