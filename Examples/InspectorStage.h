#pragma once

#include "Examples/TourStage.h"

/// Checks the exchanges of the shopping in the inspector: the list, the search and the export of all. Ends in
/// the list of requests.
class InspectorStage final : public TourStage
{
public:
    using TourStage::TourStage;

    [[nodiscard]] QList<Step> steps() override;

private:
    bool inspectorOpens();
    bool listScrolls();
    bool searchNarrowsList();
    bool searchFindsNothing();
    bool searchIsLeft();
    bool exportShares();
    bool exportedFileIsComplete();
};
