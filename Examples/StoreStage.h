#pragma once

#include "Examples/TourStage.h"

/// Uses the store: the catalogue, a product, the cart, the profile and the diagnostics.
class StoreStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool catalogueLoads();
    bool buttonMovesAside();
    bool pullingAsksAgain();
    bool searchNarrowsCatalogue();
    bool productOpens();
    bool productGoesToCart();
    bool cartShowsIt();
    bool cartLineGoes();
    bool wrongPasswordIsRefused();
    bool rightPasswordOpensProfile();
    bool diagnosticsRun();
    bool diagnosticsShowOutcomes();
};
