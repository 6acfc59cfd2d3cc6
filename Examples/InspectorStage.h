#pragma once

#include "Examples/TourStage.h"

/// What the shopping left in the inspector: list, search, details, breakpoints, export, trash.
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
    bool detailsOpen();
    bool detailsClose();
    bool breakpointsOpen();
    bool breakpointsClose();
    bool exportShares();
    bool exportedFileIsComplete();
    bool summaryIsWritten();
    bool trashEmptiesList();
    bool inspectorCloses();
    bool buttonIsDragged();
};
