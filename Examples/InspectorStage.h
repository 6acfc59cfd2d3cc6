#pragma once

#include "Examples/TourStage.h"

/// What the shopping left in the inspector: list, search, export of it all. Ends in the list of requests.
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
    bool summaryIsWritten();
};
